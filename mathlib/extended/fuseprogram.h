#pragma once
// The stored form of Fuse programs: a compact compiled form of small expressions over
// named variables, constants and functions. Only the records are kept here, so that data
// which embeds a program or its symbol table loads and saves; nothing here compiles or
// runs a program.

#include <cstdint>
#include <map>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfertypes.h"
#include "core/schema/schemadeclare.h"
#include "core/text/utlstring.h"

class CSchemaSystemTypeScope;

// Boxed 16-bit indexes; files hold the plain number.
template <typename C> struct CFuseBoxedIndex
{
	static bool KV3PreLoad( C &object, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		if ( !pValue || pValue->IsTable() )
			return false;
		KV3Transfer_t<uint16_t>::Load( object.m_Value, pValue, pContext );
		return true;
	}
	static bool KV3PreSave( const C &object, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		KV3Transfer_t<uint16_t>::Save( object.m_Value, pValue, pContext );
		return true;
	}
};

struct FuseVariableIndex_t : CFuseBoxedIndex<FuseVariableIndex_t>
{
	SCHEMA_CLASS( FuseVariableIndex_t, { "MIsBoxedIntegerType" } )
	SCHEMA_FIELD( uint16_t, m_Value, 0xFFFF ) // 0xFFFF: none
};

struct FuseFunctionIndex_t : CFuseBoxedIndex<FuseFunctionIndex_t>
{
	SCHEMA_CLASS( FuseFunctionIndex_t, { "MIsBoxedIntegerType" } )
	SCHEMA_FIELD( uint16_t, m_Value, 0xFFFF ) // 0xFFFF: none
};

enum class FuseVariableAccess_t : uint8_t
{
	WRITABLE = 0,
	READ_ONLY = 1,
};
SCHEMA_ENUM_BEGIN( FuseVariableAccess_t )
	SCHEMA_ENUMERATOR( WRITABLE )
	SCHEMA_ENUMERATOR( READ_ONLY )
SCHEMA_ENUM_END()

enum class FuseVariableType_t : uint8_t
{
	INVALID = 0,
	BOOL = 1,
	INT8 = 2,
	INT16 = 3,
	INT32 = 4,
	UINT8 = 5,
	UINT16 = 6,
	UINT32 = 7,
	FLOAT32 = 8,
};
SCHEMA_ENUM_BEGIN( FuseVariableType_t )
	SCHEMA_ENUMERATOR( INVALID )
	SCHEMA_ENUMERATOR( BOOL )
	SCHEMA_ENUMERATOR( INT8 )
	SCHEMA_ENUMERATOR( INT16 )
	SCHEMA_ENUMERATOR( INT32 )
	SCHEMA_ENUMERATOR( UINT8 )
	SCHEMA_ENUMERATOR( UINT16 )
	SCHEMA_ENUMERATOR( UINT32 )
	SCHEMA_ENUMERATOR( FLOAT32 )
SCHEMA_ENUM_END()

// The token of a symbol's name: the KV3 member hash of the name (case ignored).
uint32_t FuseNameToken( const char *pszName );

struct ConstantInfo_t
{
	SCHEMA_CLASS( ConstantInfo_t )
	SCHEMA_FIELD( CUtlString, m_name, {} )
	SCHEMA_FIELD( uint32_t, m_nameToken, 0 )
	SCHEMA_FIELD( float, m_flValue, 0.0f )
};

struct VariableInfo_t
{
	SCHEMA_CLASS( VariableInfo_t )
	SCHEMA_FIELD( CUtlString, m_name, {} )
	SCHEMA_FIELD( uint32_t, m_nameToken, 0 )
	SCHEMA_FIELD( FuseVariableIndex_t, m_nIndex, {} )
	SCHEMA_FIELD( uint8_t, m_nNumComponents, 1 )
	SCHEMA_FIELD( FuseVariableType_t, m_eVarType, FuseVariableType_t::INVALID )
	SCHEMA_FIELD( FuseVariableAccess_t, m_eAccess, FuseVariableAccess_t::WRITABLE )
};

struct FunctionInfo_t
{
	SCHEMA_CLASS( FunctionInfo_t )
	SCHEMA_FIELD( CUtlString, m_name, {} )
	SCHEMA_FIELD( uint32_t, m_nameToken, 0 )
	SCHEMA_FIELD( int32_t, m_nParamCount, 0 )
	SCHEMA_FIELD( FuseFunctionIndex_t, m_nIndex, {} )
	SCHEMA_FIELD( bool, m_bIsPure, false )
};

class CFuseProgram
{
public:
	SCHEMA_CLASS( CFuseProgram )
	SCHEMA_FIELD( std::vector<uint8_t>, m_programBuffer, {} )
	SCHEMA_FIELD( std::vector<FuseVariableIndex_t>, m_variablesRead, {} )
	SCHEMA_FIELD( std::vector<FuseVariableIndex_t>, m_variablesWritten, {} )
	SCHEMA_FIELD( int32_t, m_nMaxTempVarsUsed, 0 )
};

// The maps go from a name token to the position of the record in its list.
using FuseSymbolMap_t = std::map<uint32_t, int32_t>;

class CFuseSymbolTable
{
public:
	SCHEMA_CLASS( CFuseSymbolTable )
	SCHEMA_FIELD( std::vector<ConstantInfo_t>, m_constants, {} )
	SCHEMA_FIELD( std::vector<VariableInfo_t>, m_variables, {} )
	SCHEMA_FIELD( std::vector<FunctionInfo_t>, m_functions, {} )
	SCHEMA_FIELD( FuseSymbolMap_t, m_constantMap, {} )
	SCHEMA_FIELD( FuseSymbolMap_t, m_variableMap, {} )
	SCHEMA_FIELD( FuseSymbolMap_t, m_functionMap, {} )

	// Appends a record with its name's token and enters it in its map; answers its position.
	int AddConstant( const char *pszName, float flValue );
	int AddVariable( const char *pszName, FuseVariableType_t eType, int nComponents, FuseVariableAccess_t eAccess );
	int AddFunction( const char *pszName, int nParamCount, bool bIsPure );
	// A record by name, through its map; null when absent.
	const ConstantInfo_t *FindConstant( const char *pszName ) const;
	const VariableInfo_t *FindVariable( const char *pszName ) const;
	const FunctionInfo_t *FindFunction( const char *pszName ) const;
	// True when every map entry names a record of its list with that token.
	bool MapsAreConsistent() const;
};

// Registers the program and symbol table classes (and their records) in a scope.
void RegisterFuseClasses( CSchemaSystemTypeScope *pScope );
