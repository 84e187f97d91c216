#pragma once
// The host's factory of tool scene nodes: the named node kinds of a tool scene tree
// (group, model, particle system, camera). A node owns its children; destroying a node
// destroys its subtree.

constexpr const char *TOOLSCENENODEFACTORY_INTERFACE_VERSION = "ToolSceneNodeFactory_001";

class IToolSceneNode
{
public:
	// The kind's name, as the factory knows it ("group", "model", ...).
	virtual const char *GetKindName() const = 0;
	virtual const char *GetName() const = 0;
	virtual IToolSceneNode *GetParent() const = 0;
	virtual int GetChildCount() const = 0;
	virtual IToolSceneNode *GetChild( int nIndex ) const = 0;

protected:
	~IToolSceneNode() = default;
};

class IToolSceneNodeFactory
{
public:
	virtual int GetNodeKindCount() const = 0;
	virtual const char *GetNodeKindName( int nIndex ) const = 0;
	// A node of the kind (compared ignoring case) under the parent (null: a tree root);
	// null for an unknown kind.
	virtual IToolSceneNode *CreateNode( const char *pKind, const char *pName, IToolSceneNode *pParent ) = 0;
	// Destroys the node and its subtree, detaching it from its parent; false for a node
	// this factory doesn't hold.
	virtual bool DestroyNode( IToolSceneNode *pNode ) = 0;

protected:
	~IToolSceneNodeFactory() = default;
};
