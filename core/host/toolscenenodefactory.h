#pragma once
// The plain tool scene node factory: a tree of named nodes in memory.

#include <memory>
#include <vector>

#include "core/host/itoolscenenodefactory.h"
#include "core/text/utlstring.h"

class CHostToolSceneNode final : public IToolSceneNode
{
public:
	CHostToolSceneNode( const char *pKind, const char *pName, CHostToolSceneNode *pParent ) : m_pKind( pKind ), m_strName( pName ), m_pParent( pParent ) {}
	const char *GetKindName() const override { return m_pKind; }
	const char *GetName() const override { return m_strName.Get(); }
	IToolSceneNode *GetParent() const override { return m_pParent; }
	int GetChildCount() const override { return int( m_Children.size() ); }
	IToolSceneNode *GetChild( int nIndex ) const override;

private:
	friend class CToolSceneNodeFactory;
	const char *m_pKind;
	CUtlString m_strName;
	CHostToolSceneNode *m_pParent;
	std::vector<std::unique_ptr<CHostToolSceneNode>> m_Children;
};

class CToolSceneNodeFactory final : public IToolSceneNodeFactory
{
public:
	int GetNodeKindCount() const override;
	const char *GetNodeKindName( int nIndex ) const override;
	IToolSceneNode *CreateNode( const char *pKind, const char *pName, IToolSceneNode *pParent ) override;
	bool DestroyNode( IToolSceneNode *pNode ) override;
	int GetRootCount() const { return int( m_Roots.size() ); }

private:
	bool Holds( const IToolSceneNode *pNode ) const;

	std::vector<std::unique_ptr<CHostToolSceneNode>> m_Roots;
};
