#include "mathlib/extended/fuseprogram.h"

#include "core/kv3/kv3membername.h"
#include "core/kv3transfer/kv3transferobject.h"

uint32_t FuseNameToken( const char *pszName ) { return CKV3MemberName( pszName ? pszName : "" ).GetHashCode(); }

namespace
{
template <typename Info> const Info *FindIn( const std::vector<Info> &records, const FuseSymbolMap_t &map, const char *pszName )
{
	auto it = map.find( FuseNameToken( pszName ) );
	if ( it == map.end() || it->second < 0 || it->second >= int32_t( records.size() ) )
		return nullptr;
	return &records[ it->second ];
}

template <typename Info> bool Consistent( const std::vector<Info> &records, const FuseSymbolMap_t &map )
{
	for ( const auto &[ nToken, nIndex ] : map )
	{
		if ( nIndex < 0 || nIndex >= int32_t( records.size() ) || records[ nIndex ].m_nameToken != nToken )
			return false;
	}
	return true;
}
} // namespace

int CFuseSymbolTable::AddConstant( const char *pszName, float flValue )
{
	ConstantInfo_t &info = m_constants.emplace_back();
	info.m_name = pszName;
	info.m_nameToken = FuseNameToken( pszName );
	info.m_flValue = flValue;
	int nIndex = int( m_constants.size() ) - 1;
	m_constantMap[ info.m_nameToken ] = nIndex;
	return nIndex;
}

int CFuseSymbolTable::AddVariable( const char *pszName, FuseVariableType_t eType, int nComponents, FuseVariableAccess_t eAccess )
{
	VariableInfo_t &info = m_variables.emplace_back();
	info.m_name = pszName;
	info.m_nameToken = FuseNameToken( pszName );
	info.m_nIndex.m_Value = uint16_t( m_variables.size() - 1 );
	info.m_nNumComponents = uint8_t( nComponents );
	info.m_eVarType = eType;
	info.m_eAccess = eAccess;
	int nIndex = int( m_variables.size() ) - 1;
	m_variableMap[ info.m_nameToken ] = nIndex;
	return nIndex;
}

int CFuseSymbolTable::AddFunction( const char *pszName, int nParamCount, bool bIsPure )
{
	FunctionInfo_t &info = m_functions.emplace_back();
	info.m_name = pszName;
	info.m_nameToken = FuseNameToken( pszName );
	info.m_nParamCount = nParamCount;
	info.m_nIndex.m_Value = uint16_t( m_functions.size() - 1 );
	info.m_bIsPure = bIsPure;
	int nIndex = int( m_functions.size() ) - 1;
	m_functionMap[ info.m_nameToken ] = nIndex;
	return nIndex;
}

const ConstantInfo_t *CFuseSymbolTable::FindConstant( const char *pszName ) const { return FindIn( m_constants, m_constantMap, pszName ); }
const VariableInfo_t *CFuseSymbolTable::FindVariable( const char *pszName ) const { return FindIn( m_variables, m_variableMap, pszName ); }
const FunctionInfo_t *CFuseSymbolTable::FindFunction( const char *pszName ) const { return FindIn( m_functions, m_functionMap, pszName ); }

bool CFuseSymbolTable::MapsAreConsistent() const
{
	return Consistent( m_constants, m_constantMap ) && Consistent( m_variables, m_variableMap ) && Consistent( m_functions, m_functionMap );
}

void RegisterFuseClasses( CSchemaSystemTypeScope *pScope )
{
	RegisterKV3TransferClass<CFuseProgram>( pScope );
	RegisterKV3TransferClass<CFuseSymbolTable>( pScope );
}
