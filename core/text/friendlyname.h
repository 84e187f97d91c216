#pragma once
// Display names made from names in code, for editors that show schema fields and
// classes without an authored friendly name:
//   m_flRadiusScale       -> "Radius Scale"   (member prefix and type mark dropped)
//   m_nControlPointNumber -> "Control Point Number"
//   C_OP_FadeAndKill      -> "Fade And Kill"  (class and family prefix dropped)
//   m_nCP1                -> "CP 1"           (words break at case changes and digits)
//   m_bUse2DSpace         -> "Use 2D Space"
//   my_field_name         -> "My Field Name"

#include <cstddef>

class CUtlString;

// Answers false (and copies the name as it stands) when nothing readable remains.
bool V_TryAndMakeFriendlyNameFromCppName( const char *pCppName, char *pOut, size_t nOutSize );
bool V_TryAndMakeFriendlyNameFromCppName( const char *pCppName, CUtlString *pOut );
