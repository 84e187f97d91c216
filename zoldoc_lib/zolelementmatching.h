#pragma once
// Which element of one section is which of another's. Functions are told apart by class and
// content, children, variables and configurations by their key (path or name); position
// alone never decides, so a moved function is still the same function.

#include <vector>

struct ZolDefinitionElement_t;

struct ZolElementMatch_t
{
	// For each element of the first list its partner in the second, or -1; and back.
	std::vector<int> m_AToB;
	std::vector<int> m_BToA;
};

// Equal elements pair first, in order; then elements of one class (or one key) pair by how
// many fields they share, the closest in position first among equals.
void MatchDefinitionElements( int nSection, const std::vector<ZolDefinitionElement_t> &a, const std::vector<ZolDefinitionElement_t> &b,
							  ZolElementMatch_t *pMatch );

// Marks the elements of the second list that moved: the fewest partners that must move to
// turn the first list's order into the second's.
void FindMovedElements( const ZolElementMatch_t &match, std::vector<bool> *pMovedB );
// Whether the partners stand in the second list in the first list's order.
bool ArePartnersInOrder( const ZolElementMatch_t &match );
