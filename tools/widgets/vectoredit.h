#pragma once
// A vector's three fields with the captions X, Y and Z before them: a setting of its own
// (the preview's gravity), where the row around it doesn't already say what it is.

#include "tools/widgets/editboxvector3.h"

class CQVectorEdit : public CQEditboxVector3
{
	Q_OBJECT

public:
	explicit CQVectorEdit( QWidget *pParent = nullptr );
};
