#pragma once
// The look of the function list: a dark panel on which the rows' own colours read well
// (names light blue, values tan, conflicts yellow), and the two command buttons.

#include <QString>

QString GetParticleFunctionListStyleSheet();
