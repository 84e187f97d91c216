#pragma once
// A node with no content of its own: it places and shows or hides its children together.

#include "tools/toolscene/toolscenenode.h"

class CToolSceneNodeGroup : public CToolSceneNode
{
public:
	using CToolSceneNode::CToolSceneNode;
};
