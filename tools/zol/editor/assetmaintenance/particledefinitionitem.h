#pragma once
// One row of the reference navigator: a system of a tree (or the tree's "Outside World"
// row), drawn bold when an editor has it open, italic below a root reached through a
// modifier, struck out when a child reference on its way is switched off. Rows of the
// same system in all trees are twins: clicking one highlights them all.

#include <vector>

#include <QTreeWidgetItem>

#include "zoldoc_lib/zolreferencenavigator.h"

class CQParticleDefinitionItem : public QTreeWidgetItem
{
public:
	// The row lives in the navigator's model as long as the item does.
	CQParticleDefinitionItem( const ZolReferenceRow_t &row, const std::vector<CUtlString> &keys );

	IAsset *GetAsset() const { return m_pRow->m_pAsset; }
	const ZolReferenceRow_t &GetRow() const { return *m_pRow; }
	// The cell of a key column, or null.
	const ZolReferenceCell_t *GetCell( int nColumn ) const;

	std::vector<CQParticleDefinitionItem *> &GetTwins() { return m_Twins; }
	bool IsHighlighted() const { return m_bHighlighted; }
	// A row with twins shows its highlight in its name's colour; one without keeps it.
	void SetHighlighted( bool bHighlighted );

	static const QColor &HighlightColor();
	static const QColor &TextColor();

private:
	const ZolReferenceRow_t *m_pRow;
	std::vector<CQParticleDefinitionItem *> m_Twins;
	bool m_bHighlighted = false;
};

// Where the row's cell of a key column lies: the item's data of the column, under this role.
constexpr int ZOL_REFERENCE_CELL_ROLE = Qt::UserRole;
