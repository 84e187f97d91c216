#pragma once
// A vector's three fields with the captions X, Y and Z before them: a setting of its own
// (the preview's gravity), where the row around it doesn't already say what it is.

#include "tools/widgets/editboxvector3.h"

class CQCaptionedVectorEdit : public CQEditboxVector3
{
	Q_OBJECT

public:
	explicit CQCaptionedVectorEdit( QWidget *pParent = nullptr );
};
