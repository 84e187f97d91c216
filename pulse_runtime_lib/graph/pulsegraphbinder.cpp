#include "pulse_runtime_lib/graph/pulsegraphbinder.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "core/schema/schemaclassinfo.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

using enum PulseInstructionCode_t;

namespace
{
constexpr size_t MAX_OFFSET = 0xFFFF;
constexpr int MAX_REGISTERS = 0x7FFF;

bool IsGenericOperator( PulseInstructionCode_t eCode )
{
	return ( eCode >= NEGATE && eCode <= NE ) || ( eCode >= SCALE && eCode <= ELEMENT_ACCESS );
}

// Values that are plain bytes: copied with memcpy, destroyed by nothing.
bool IsPlainBytes( const CPulseValueFullType &type )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_STRING:
	case PVAL_RESOURCE:
	case PVAL_RESOURCE_NAME:
	case PVAL_SNDEVT_NAME:
	case PVAL_MODEL_MATERIAL_GROUP:
	case PVAL_VARIANT:
	case PVAL_ARRAY: return false;
	default: return true;
	}
}

// Values of the two types sit in the same storage and copy the same way.
bool SameStorage( const CPulseValueFullType &a, const CPulseValueFullType &b )
{
	if ( a.GetBaseType() != b.GetBaseType() )
		return false;
	if ( !a.IsArray() )
		return true;
	const CPulseValueFullType *pA = a.GetElementType(), *pB = b.GetElementType();
	return pA && pB && SameStorage( *pA, *pB );
}

size_t AlignUp( size_t nValue, size_t nAlignment )
{
	return ( nValue + nAlignment - 1 ) / nAlignment * nAlignment;
}

const char *TypeText( const CPulseValueFullType &type, CUtlString *pStorage )
{
	type.ToString( pStorage );
	if ( pStorage->IsEmpty() )
		pStorage->Set( "no type" );
	return pStorage->Get();
}
} // namespace

class CPulseGraphBinder
{
public:
	CPulseGraphBinder( CPulseGraphDef *pDef, PulseGraphMessages_t *pMessages ) : m_Def( *pDef ), m_pMessages( pMessages ) {}

	bool Bind()
	{
		BindVariables();
		BindConstants();
		BindDomainValues();
		BindCells();
		BindInvokeBindings();
		BindCallInfos();
		if ( !Failed() )
			LayOutState();
		for ( size_t i = 0; i < m_Def.m_Chunks.size(); ++i )
			LayOutRegisters( int( i ) );
		if ( Failed() )
			return false;
		for ( size_t i = 0; i < m_Def.m_Chunks.size(); ++i )
			BindChunk( int( i ) );
		CheckEntriesAndOutflows();
		if ( Failed() )
		{
			for ( CPulse_Chunk &chunk : m_Def.m_Chunks )
			{
				chunk.m_Ops.clear();
				chunk.m_OpData.clear();
				chunk.m_BoundCodes.clear();
				chunk.m_InvokePlans.clear();
				chunk.m_CallPlans.clear();
			}
			return false;
		}
		BuildConstantBuffer();
		m_Def.m_bBound = true;
		return true;
	}

private:
	bool Failed() const { return m_nErrors > 0; }

	void Error( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) )
	{
		va_list args;
		va_start( args, pFormat );
		char buffer[ 1024 ];
		vsnprintf( buffer, sizeof( buffer ), pFormat, args );
		va_end( args );
		m_pMessages->m_Errors.emplace_back( buffer );
		++m_nErrors;
	}

	// Errors about one instruction name its place: "C0:I3 (ADD): ...".
	void InstructionError( int nChunk, int nInstruction, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) )
	{
		const PGDInstruction_t &instruction = m_Def.m_Chunks[ size_t( nChunk ) ].m_Instructions[ size_t( nInstruction ) ];
		const char *pName = PulseInstructionCode_GetName( int( instruction.m_nCode ) );
		CUtlString text;
		if ( pName )
			text.Format( "C%d:I%d (%s): ", nChunk, nInstruction, pName );
		else
			text.Format( "C%d:I%d (code %d): ", nChunk, nInstruction, int( instruction.m_nCode ) );
		va_list args;
		va_start( args, pFormat );
		char buffer[ 1024 ];
		vsnprintf( buffer, sizeof( buffer ), pFormat, args );
		va_end( args );
		text += buffer;
		m_pMessages->m_Errors.push_back( text );
		++m_nErrors;
	}

	// A value of a type built from its KV3 form; false with the reason.
	static bool CheckValue( const CPulseValueFullType &type, const KeyValues3 &value, CUtlString *pError )
	{
		CPulseVariant variant( type );
		return variant.GetValue() == nullptr || PulseValue_LoadKV3( type, variant.GetValue(), &value, pError );
	}

	void BindVariables()
	{
		for ( size_t i = 0; i < m_Def.m_Vars.size(); ++i )
		{
			const CPulse_Variable &var = m_Def.m_Vars[ i ];
			CUtlString text, error;
			if ( !PulseGraphDef_IsStorableType( var.m_Type ) )
				Error( "V%zu '%s': '%s' is not a type a variable can have", i, var.m_Name.String(), TypeText( var.m_Type, &text ) );
			else if ( !CheckValue( var.m_Type, var.m_DefaultValue, &error ) )
				Error( "V%zu '%s': the default value is no %s: %s", i, var.m_Name.String(), TypeText( var.m_Type, &text ), error.Get() );
		}
	}

	void BindConstants()
	{
		for ( size_t i = 0; i < m_Def.m_Constants.size(); ++i )
		{
			const CPulse_Constant &constant = m_Def.m_Constants[ i ];
			CUtlString text, error;
			if ( !PulseGraphDef_IsStorableType( constant.m_Type ) )
				Error( "C%zu: '%s' is not a type a constant can have", i, TypeText( constant.m_Type, &text ) );
			else if ( !CheckValue( constant.m_Type, constant.m_Value, &error ) )
				Error( "constant %zu: the value is no %s: %s", i, TypeText( constant.m_Type, &text ), error.Get() );
		}
	}

	void BindDomainValues()
	{
		for ( size_t i = 0; i < m_Def.m_DomainValues.size(); ++i )
		{
			CUtlString text;
			if ( !PulseGraphDef_IsStorableType( m_Def.m_DomainValues[ i ].m_RequiredRuntimeType ) )
				Error( "DV%zu: '%s' is not a type a domain value can have", i, TypeText( m_Def.m_DomainValues[ i ].m_RequiredRuntimeType, &text ) );
		}
	}

	void BindRegisterMap( PulseRegisterMap_t &map, const char *pWhere )
	{
		CUtlString error;
		if ( !map.Bind( &error ) )
			Error( "%s: %s", pWhere, error.Get() );
		else if ( map.m_BoundIn.size() > size_t( PulseArgPack::MAX_ARGS ) || map.m_BoundOut.size() > size_t( PulseArgPack::MAX_ARGS ) )
			Error( "%s: more than %d arguments", pWhere, PulseArgPack::MAX_ARGS );
	}

	void BindCells()
	{
		for ( size_t i = 0; i < m_Def.m_Cells.size(); ++i )
		{
			CPulseCell_Base *pCell = m_Def.m_Cells[ i ].get();
			if ( !pCell )
				continue;
			CUtlString where;
			where.Format( "Cell%zu (%s)", i, pCell->GetClassName() );
			if ( auto *pEntry = dynamic_cast<CPulseCell_Inflow_BaseEntrypoint *>( pCell ) )
				BindRegisterMap( pEntry->m_RegisterMap, where );
			std::vector<CPulse_OutflowConnection *> outflows;
			pCell->GatherOutflows( &outflows );
			for ( CPulse_OutflowConnection *pOutflow : outflows )
				BindRegisterMap( pOutflow->m_OutflowRegisterMap, where );
		}
	}

	// The function of an invoke: the cell's class and its bases, or the libraries.
	const PulseFunctionBinding_t *ResolveFunction( const CPulse_InvokeBinding &binding, const CPulseCell_Base *pCell )
	{
		if ( !pCell )
			return PulseFunctions_FindLibrary( binding.m_FuncName.String() );
		for ( const CSchemaClassInfo *pClass = pCell->GetSchemaClass(); pClass; pClass = pClass->GetBaseClass() )
		{
			if ( const PulseFunctionBinding_t *pFunction = PulseFunctions_Find( pClass->GetName(), binding.m_FuncName.String() ) )
				return pFunction;
		}
		return nullptr;
	}

	void BindInvokeBindings()
	{
		for ( size_t i = 0; i < m_Def.m_InvokeBindings.size(); ++i )
		{
			CPulse_InvokeBinding &binding = m_Def.m_InvokeBindings[ i ];
			CUtlString where;
			where.Format( "Invoke%zu '%s'", i, binding.m_FuncName.String() );
			BindRegisterMap( binding.m_RegisterMap, where );
			const CPulseCell_Base *pCell = nullptr;
			if ( binding.m_nCellIndex >= 0 )
			{
				pCell = m_Def.GetCell( binding.m_nCellIndex );
				if ( !pCell )
				{
					Error( "%s: Cell%d %s", where.Get(), binding.m_nCellIndex, size_t( binding.m_nCellIndex ) < m_Def.m_Cells.size() ? "is empty" : "does not exist" );
					continue;
				}
			}
			binding.m_pFunction = ResolveFunction( binding, pCell );
			if ( !binding.m_pFunction )
			{
				if ( pCell )
					Error( "%s: Cell%d (%s) has no function '%s'", where.Get(), binding.m_nCellIndex, pCell->GetClassName(), binding.m_FuncName.String() );
				else
					Error( "%s: no library has a function '%s'", where.Get(), binding.m_FuncName.String() );
				continue;
			}
			if ( pCell && binding.m_pFunction->IsLibrary() )
			{
				Error( "%s: '%s' is a library function, called on a cell", where.Get(), binding.m_FuncName.String() );
				continue;
			}
			binding.m_nRequiredHostMask = binding.m_pFunction->m_nRequiredHostMask;
			binding.m_pOpaque = nullptr;
			const PulseFunctionBinding_t &function = *binding.m_pFunction;
			for ( const PulseRegisterMapEntry_t &entry : binding.m_RegisterMap.m_BoundIn )
			{
				if ( function.FindInput( entry.m_Name.String() ) < 0 && !( function.m_nFlags & PULSE_FUNCTION_FLAG_EXTRA_ARGS ) )
					Error( "%s: '%s' is not a parameter of %s::%s", where.Get(), entry.m_Name.String(), function.m_pClassName, function.m_pMethodName );
			}
			for ( const PulseRegisterMapEntry_t &entry : binding.m_RegisterMap.m_BoundOut )
			{
				if ( function.FindOutput( entry.m_Name.String() ) < 0 )
					Error( "%s: %s::%s has no result '%s'", where.Get(), function.m_pClassName, function.m_pMethodName, entry.m_Name.String() );
			}
		}
	}

	void BindCallInfos()
	{
		for ( size_t i = 0; i < m_Def.m_CallInfos.size(); ++i )
		{
			CPulse_CallInfo &call = m_Def.m_CallInfos[ i ];
			CUtlString where;
			where.Format( "CallInfo%zu", i );
			BindRegisterMap( call.m_RegisterMap, where );
			// A call to a point of the graph (a loop body, a sequential branch) has no method:
			// it runs in its own frame and comes back, with nothing passed either way.
			if ( call.m_CallMethodID == -1 )
			{
				if ( !call.m_RegisterMap.m_BoundIn.empty() || !call.m_RegisterMap.m_BoundOut.empty() )
					Error( "%s: a call to a point of the graph takes no arguments and gives no result", where.Get() );
				continue;
			}
			const CPulseCell_Base *pTarget = m_Def.FindCellByEditorNodeID( call.m_CallMethodID );
			auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( pTarget );
			if ( !pMethod )
			{
				Error( "%s: node %d is not a method (%s)", where.Get(), call.m_CallMethodID, pTarget ? pTarget->GetClassName() : "no cell has that node id" );
				continue;
			}
			for ( const PulseRegisterMapEntry_t &entry : call.m_RegisterMap.m_BoundIn )
			{
				bool bFound = false;
				for ( const PulseRegisterMapEntry_t &parameter : pMethod->m_RegisterMap.m_BoundOut )
					bFound = bFound || parameter.m_Name == entry.m_Name;
				if ( !bFound )
					Error( "%s: '%s' is not a parameter of method '%s'", where.Get(), entry.m_Name.String(), pMethod->m_MethodName.String() );
			}
			for ( const PulseRegisterMapEntry_t &entry : call.m_RegisterMap.m_BoundOut )
			{
				if ( strcmp( entry.m_Name.String(), "retval" ) != 0 )
					Error( "%s: a method gives back only 'retval', not '%s'", where.Get(), entry.m_Name.String() );
			}
		}
	}

	// Variables, the cells' per-instance state, then the cached domain values.
	void LayOutState()
	{
		size_t nOffset = 0, nAlignment = 1;
		auto place = [ & ]( size_t nSize, size_t nAlign, PulseRuntimeStateOffset_t *pOffset ) {
			nAlign = std::max<size_t>( nAlign, 1 );
			nOffset = AlignUp( nOffset, nAlign );
			nAlignment = std::max( nAlignment, nAlign );
			*pOffset = nOffset < MAX_OFFSET ? PulseRuntimeStateOffset_t( nOffset ) : PULSE_NO_STATE_OFFSET;
			nOffset += nSize;
		};
		for ( CPulse_Variable &var : m_Def.m_Vars )
			place( PulseValue_GetSize( var.m_Type ), PulseValue_GetAlignment( var.m_Type ), &var.m_nStateOffset );
		m_Def.m_StatefulCells.clear();
		for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Def.m_Cells )
		{
			size_t nSize = 0, nAlign = 1;
			if ( pCell )
				pCell->GetInstanceStateLayout( &nSize, &nAlign );
			if ( nSize == 0 )
				continue;
			PulseRuntimeStateOffset_t nCellOffset;
			place( nSize, nAlign, &nCellOffset );
			m_Def.m_StatefulCells.push_back( { pCell.get(), nCellOffset } );
		}
		for ( CPulse_DomainValue &value : m_Def.m_DomainValues )
			place( PulseValue_GetSize( value.m_RequiredRuntimeType ), PulseValue_GetAlignment( value.m_RequiredRuntimeType ), &value.m_nStateOffset );
		if ( nOffset > MAX_OFFSET )
		{
			Error( "the per-instance state needs %zu bytes, more than the %zu its offsets reach", nOffset, MAX_OFFSET );
			return;
		}
		m_Def.m_nStateSize = nOffset;
		m_Def.m_nStateAlignment = nAlignment;
	}

	void LayOutRegisters( int nChunk )
	{
		CPulse_Chunk &chunk = m_Def.m_Chunks[ size_t( nChunk ) ];
		chunk.m_RegisterOffsets.clear();
		if ( chunk.m_Registers.size() > size_t( MAX_REGISTERS ) )
		{
			Error( "C%d: %zu registers, more than %d", nChunk, chunk.m_Registers.size(), MAX_REGISTERS );
			return;
		}
		if ( chunk.m_Instructions.size() > MAX_OFFSET )
			Error( "C%d: %zu instructions, more than %zu", nChunk, chunk.m_Instructions.size(), MAX_OFFSET );
		if ( !chunk.m_InstructionDebugInfos.empty() && chunk.m_InstructionDebugInfos.size() != chunk.m_Instructions.size() )
			Error( "C%d: %zu debug records for %zu instructions", nChunk, chunk.m_InstructionDebugInfos.size(), chunk.m_Instructions.size() );
		size_t nOffset = 0, nAlignment = 16;
		for ( size_t i = 0; i < chunk.m_Registers.size(); ++i )
		{
			const CPulse_RegisterInfo &reg = chunk.m_Registers[ i ];
			CUtlString text;
			if ( reg.m_nReg != int( i ) )
				Error( "C%d: register %zu says it is R%d", nChunk, i, reg.m_nReg );
			if ( !PulseGraphDef_IsStorableType( reg.m_Type ) )
				Error( "C%d: R%zu has '%s', not a type a register can hold", nChunk, i, TypeText( reg.m_Type, &text ) );
			size_t nAlign = PulseValue_GetAlignment( reg.m_Type );
			nOffset = AlignUp( nOffset, nAlign );
			chunk.m_RegisterOffsets.push_back( uint16_t( std::min( nOffset, MAX_OFFSET ) ) );
			nOffset += PulseValue_GetSize( reg.m_Type );
		}
		if ( nOffset > MAX_OFFSET )
		{
			Error( "C%d: the registers need %zu bytes, more than the %zu their offsets reach", nChunk, nOffset, MAX_OFFSET );
			return;
		}
		chunk.m_nRegisterBytes = uint32_t( nOffset );
		chunk.m_nRegisterAlignment = uint32_t( nAlignment );
		if ( Failed() )
			return;
		// The defaults as bytes: built once here, copied into every new register file.
		chunk.m_DefaultRegisters.assign( chunk.m_nRegisterBytes, 0 );
		chunk.m_OwningRegisters.clear();
		unsigned char *pBlock = static_cast<unsigned char *>( std::aligned_alloc( 16, AlignUp( std::max<size_t>( chunk.m_nRegisterBytes, 16 ), 16 ) ) );
		for ( size_t i = 0; i < chunk.m_Registers.size(); ++i )
		{
			const CPulseValueFullType &type = chunk.m_Registers[ i ].m_Type;
			void *pValue = pBlock + chunk.m_RegisterOffsets[ i ];
			PulseValue_Construct( type, pValue );
			if ( PulseValue_GetSize( type ) > 0 )
				memcpy( chunk.m_DefaultRegisters.data() + chunk.m_RegisterOffsets[ i ], pValue, PulseValue_GetSize( type ) );
			PulseValue_Destruct( type, pValue );
			if ( !IsPlainBytes( type ) )
				chunk.m_OwningRegisters.push_back( uint16_t( i ) );
		}
		std::free( pBlock );
	}

	// Operand checks. Each answers false after reporting.
	bool CheckRegister( int nChunk, int nInstruction, const char *pField, int nRegister )
	{
		const CPulse_Chunk &chunk = m_Def.m_Chunks[ size_t( nChunk ) ];
		if ( nRegister < 0 || nRegister >= chunk.GetRegisterCount() )
		{
			InstructionError( nChunk, nInstruction, "%s is R%d, but the chunk has %d register(s)", pField, nRegister, chunk.GetRegisterCount() );
			return false;
		}
		return true;
	}

	bool CheckIndex( int nChunk, int nInstruction, const char *pField, int nIndex, size_t nCount, const char *pTable )
	{
		if ( nIndex < 0 || size_t( nIndex ) >= nCount )
		{
			InstructionError( nChunk, nInstruction, "%s is %d, but %s has %zu entr%s", pField, nIndex, pTable, nCount, nCount == 1 ? "y" : "ies" );
			return false;
		}
		return true;
	}

	bool CheckOperands( int nChunk, int nInstruction )
	{
		const PGDInstruction_t &instruction = m_Def.m_Chunks[ size_t( nChunk ) ].m_Instructions[ size_t( nInstruction ) ];
		uint16_t nOperands = PulseInstructionCode_GetOperands( int( instruction.m_nCode ) );
		bool bOk = true;
		if ( nOperands & PULSE_OPERAND_REG0 )
			bOk &= CheckRegister( nChunk, nInstruction, "m_nReg0", instruction.m_nReg0 );
		if ( nOperands & PULSE_OPERAND_REG1 )
			bOk &= CheckRegister( nChunk, nInstruction, "m_nReg1", instruction.m_nReg1 );
		if ( ( nOperands & PULSE_OPERAND_REG1_OPTIONAL ) && instruction.m_nReg1 != -1 )
			bOk &= CheckRegister( nChunk, nInstruction, "m_nReg1", instruction.m_nReg1 );
		if ( nOperands & PULSE_OPERAND_REG2 )
			bOk &= CheckRegister( nChunk, nInstruction, "m_nReg2", instruction.m_nReg2 );
		if ( nOperands & PULSE_OPERAND_VAR )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nVar", instruction.m_nVar, m_Def.m_Vars.size(), "m_Vars" );
		if ( nOperands & PULSE_OPERAND_CONST )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nConstIdx", instruction.m_nConstIdx, m_Def.m_Constants.size(), "m_Constants" );
		if ( nOperands & PULSE_OPERAND_DOMAIN_VALUE )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nDomainValueIdx", instruction.m_nDomainValueIdx, m_Def.m_DomainValues.size(), "m_DomainValues" );
		if ( nOperands & PULSE_OPERAND_BLACKBOARD )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nBlackboardReferenceIdx", instruction.m_nBlackboardReferenceIdx, m_Def.m_BlackboardReferences.size(), "m_BlackboardReferences" );
		if ( nOperands & PULSE_OPERAND_CALL_INFO )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nCallInfoIndex", instruction.m_nCallInfoIndex, m_Def.m_CallInfos.size(), "m_CallInfos" );
		if ( nOperands & PULSE_OPERAND_INVOKE )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nInvokeBindingIndex", instruction.m_nInvokeBindingIndex, m_Def.m_InvokeBindings.size(), "m_InvokeBindings" );
		if ( nOperands & PULSE_OPERAND_CHUNK )
			bOk &= CheckIndex( nChunk, nInstruction, "m_nChunk", instruction.m_nChunk, m_Def.m_Chunks.size(), "m_Chunks" );
		if ( nOperands & PULSE_OPERAND_DEST )
		{
			// A jump stays in its chunk; a call enters the chunk it names.
			int nTarget = ( nOperands & PULSE_OPERAND_CHUNK ) ? instruction.m_nChunk : nChunk;
			if ( bOk && ( instruction.m_nDestInstruction < 0 || instruction.m_nDestInstruction >= m_Def.m_Chunks[ size_t( nTarget ) ].GetInstructionCount() ) )
			{
				InstructionError( nChunk, nInstruction, "the destination I%d is outside C%d (%d instruction(s))", instruction.m_nDestInstruction, nTarget,
								  m_Def.m_Chunks[ size_t( nTarget ) ].GetInstructionCount() );
				bOk = false;
			}
		}
		// A leap enters instruction 0 of its chunk, which must have one.
		if ( bOk && ( nOperands & PULSE_OPERAND_CHUNK ) && !( nOperands & PULSE_OPERAND_DEST ) && m_Def.m_Chunks[ size_t( instruction.m_nChunk ) ].m_Instructions.empty() )
		{
			InstructionError( nChunk, nInstruction, "leaps to C%d, which has no instructions", instruction.m_nChunk );
			bOk = false;
		}
		return bOk;
	}

	const CPulseValueFullType &RegType( int nChunk, int nRegister ) const { return m_Def.m_Chunks[ size_t( nChunk ) ].m_Registers[ size_t( nRegister ) ].m_Type; }
	uint16_t RegOffset( int nChunk, int nRegister ) const { return m_Def.m_Chunks[ size_t( nChunk ) ].m_RegisterOffsets[ size_t( nRegister ) ]; }

	bool ExpectType( int nChunk, int nInstruction, const char *pField, int nRegister, PulseValueType_t eType )
	{
		const CPulseValueFullType &type = RegType( nChunk, nRegister );
		if ( type.GetBaseType() == eType )
			return true;
		CUtlString text;
		InstructionError( nChunk, nInstruction, "%s (R%d) holds %s, not %s", pField, nRegister, TypeText( type, &text ), PulseValueType_GetName( eType ) );
		return false;
	}

	bool ExpectStorage( int nChunk, int nInstruction, const char *pField, int nRegister, const CPulseValueFullType &wanted, const char *pWhat )
	{
		const CPulseValueFullType &type = RegType( nChunk, nRegister );
		if ( SameStorage( type, wanted ) )
			return true;
		CUtlString text, wantedText;
		InstructionError( nChunk, nInstruction, "%s (R%d) holds %s, but %s is %s", pField, nRegister, TypeText( type, &text ), pWhat, TypeText( wanted, &wantedText ) );
		return false;
	}

	// The plan of an invoke at one instruction: every input and output of the function in
	// signature order, each with its register and how it passes.
	bool BuildInvokePlan( int nChunk, int nInstruction, const CPulse_InvokeBinding &binding, PulseInvokePlan_t *pPlan )
	{
		const PulseFunctionBinding_t &function = *binding.m_pFunction;
		pPlan->m_pBinding = &binding;
		pPlan->m_pFunction = &function;
		pPlan->m_nCellIndex = binding.m_nCellIndex;
		pPlan->m_pCell = m_Def.GetCell( binding.m_nCellIndex );
		if ( function.m_Inputs.size() > size_t( PulseArgPack::MAX_ARGS ) || function.m_Outputs.size() > size_t( PulseArgPack::MAX_ARGS ) )
		{
			InstructionError( nChunk, nInstruction, "%s::%s has more than %d parameters", function.m_pClassName, function.m_pMethodName, PulseArgPack::MAX_ARGS );
			return false;
		}
		// Each parameter in signature order, with the register the map gives it; a
		// parameter without one passes its default (inputs) or goes nowhere (outputs).
		bool bOk = true;
		auto place = [ & ]( const PulseFunctionParam_t &param, const std::vector<PulseRegisterMapEntry_t> &entries, bool bInput, PulseInvokeArg_t *pArg ) {
			pArg->m_Name = PulseSymbol_t( param.m_pName );
			pArg->m_pParamType = &param.m_Type;
			for ( const PulseRegisterMapEntry_t &entry : entries )
			{
				if ( entry.m_Name != pArg->m_Name )
					continue;
				if ( !CheckRegister( nChunk, nInstruction, entry.m_Name.String(), entry.m_nRegister ) )
				{
					bOk = false;
					return;
				}
				const CPulseValueFullType &regType = RegType( nChunk, entry.m_nRegister );
				pArg->m_nRegOffset = RegOffset( nChunk, entry.m_nRegister );
				pArg->m_pRegType = &regType;
				CUtlString from, to;
				if ( bInput && param.m_Type.GetBaseType() == PVAL_VARIANT )
					pArg->m_eMode = PulseInvokeArg_t::MODE_VARIANT;
				else if ( SameStorage( regType, param.m_Type ) )
					pArg->m_eMode = PulseInvokeArg_t::MODE_REFERENCE;
				else if ( bInput ? PulseValue_CanConvert( regType, param.m_Type ) : PulseValue_CanConvert( param.m_Type, regType ) )
					pArg->m_eMode = PulseInvokeArg_t::MODE_CONVERT;
				else if ( bInput )
					InstructionError( nChunk, nInstruction, "'%s' (R%d) holds %s, which can't be passed as %s", param.m_pName, entry.m_nRegister, TypeText( regType, &from ),
									  TypeText( param.m_Type, &to ) );
				else
					InstructionError( nChunk, nInstruction, "the result '%s' is %s, which R%d (%s) can't take", param.m_pName, TypeText( param.m_Type, &from ), entry.m_nRegister,
									  TypeText( regType, &to ) );
				bOk = bOk && pArg->m_eMode != PulseInvokeArg_t::MODE_DEFAULT;
			}
		};
		for ( const PulseFunctionParam_t &param : function.m_Inputs )
			place( param, binding.m_RegisterMap.m_BoundIn, true, &pPlan->m_In.emplace_back() );
		for ( const PulseFunctionParam_t &param : function.m_Outputs )
			place( param, binding.m_RegisterMap.m_BoundOut, false, &pPlan->m_Out.emplace_back() );
		return bOk;
	}

	// A call's arguments must reach the method's registers, and its result the caller's.
	bool CheckCall( int nChunk, int nInstruction, const CPulse_CallInfo &call, int nTargetChunk, PulseCallPlan_t *pPlan )
	{
		pPlan->m_pCallInfo = &call;
		if ( call.m_CallMethodID == -1 )
			return call.m_RegisterMap.m_BoundIn.empty() && call.m_RegisterMap.m_BoundOut.empty(); // reported with the call infos
		auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( m_Def.FindCellByEditorNodeID( call.m_CallMethodID ) );
		if ( !pMethod )
			return false; // reported with the call infos
		pPlan->m_pTarget = pMethod;
		bool bOk = true;
		for ( const PulseRegisterMapEntry_t &entry : call.m_RegisterMap.m_BoundIn )
		{
			if ( !CheckRegister( nChunk, nInstruction, entry.m_Name.String(), entry.m_nRegister ) )
			{
				bOk = false;
				continue;
			}
			for ( const PulseRegisterMapEntry_t &parameter : pMethod->m_RegisterMap.m_BoundOut )
			{
				if ( parameter.m_Name != entry.m_Name || parameter.m_nRegister >= m_Def.m_Chunks[ size_t( nTargetChunk ) ].GetRegisterCount() )
					continue;
				const CPulseValueFullType &from = RegType( nChunk, entry.m_nRegister ), &to = RegType( nTargetChunk, parameter.m_nRegister );
				if ( !PulseValue_CanConvert( from, to ) )
				{
					CUtlString fromText, toText;
					InstructionError( nChunk, nInstruction, "'%s' (R%d) holds %s, which method '%s' can't take as %s", entry.m_Name.String(), entry.m_nRegister,
									  TypeText( from, &fromText ), pMethod->m_MethodName.String(), TypeText( to, &toText ) );
					bOk = false;
				}
			}
		}
		for ( const PulseRegisterMapEntry_t &entry : call.m_RegisterMap.m_BoundOut )
			bOk &= CheckRegister( nChunk, nInstruction, entry.m_Name.String(), entry.m_nRegister );
		return bOk;
	}

	void BindChunk( int nChunk )
	{
		CPulse_Chunk &chunk = m_Def.m_Chunks[ size_t( nChunk ) ];
		chunk.m_Ops.clear();
		chunk.m_OpData.clear();
		chunk.m_BoundCodes.clear();
		chunk.m_InvokePlans.clear();
		chunk.m_CallPlans.clear();
		for ( int i = 0; i < chunk.GetInstructionCount(); ++i )
		{
			PulseOp_t op {};
			PulseOpData_t data;
			PulseInstructionCode_t eBound = BindInstruction( nChunk, i, &op, &data );
			chunk.m_BoundCodes.push_back( eBound );
			chunk.m_Ops.push_back( op );
			chunk.m_OpData.push_back( data );
		}
		if ( !chunk.m_Instructions.empty() )
		{
			int nLast = chunk.GetInstructionCount() - 1;
			if ( FallsThrough( chunk.m_Instructions[ size_t( nLast ) ] ) )
				InstructionError( nChunk, nLast, "the last instruction of the chunk doesn't end its flow (a return, jump or leap must follow)" );
		}
		PulseOp_t end {};
		end.m_nCode = PULSE_OP_END_OF_CHUNK;
		chunk.m_Ops.push_back( end );
		chunk.m_OpData.emplace_back();
	}

	// Whether control can run on to the next instruction.
	bool FallsThrough( const PGDInstruction_t &instruction ) const
	{
		switch ( instruction.m_nCode )
		{
		case IMMEDIATE_HALT:
		case RETURN_VOID:
		case RETURN_VALUE:
		case JUMP:
		case CHUNK_LEAP: return false;
		case CELL_INVOKE:
		case LIBRARY_INVOKE:
		{
			// A flow function moves the cursor itself (a yield, a release, a jump to an outflow).
			const CPulse_InvokeBinding *pBinding = m_Def.GetInvokeBinding( instruction.m_nInvokeBindingIndex );
			return !( pBinding && pBinding->m_pFunction && pBinding->m_pFunction->MayLeaveFlow() );
		}
		default: return true;
		}
	}

	// Checks one instruction and fills its operation; answers the bound code.
	PulseInstructionCode_t BindInstruction( int nChunk, int nInstruction, PulseOp_t *pOp, PulseOpData_t *pData )
	{
		CPulse_Chunk &chunk = m_Def.m_Chunks[ size_t( nChunk ) ];
		const PGDInstruction_t &instruction = chunk.m_Instructions[ size_t( nInstruction ) ];
		PulseInstructionCode_t eCode = instruction.m_nCode;
		pOp->m_nCode = int16_t( eCode );
		if ( !PulseInstructionCode_IsStored( int( eCode ) ) )
		{
			const char *pName = PulseInstructionCode_GetName( int( eCode ) );
			if ( pName )
				InstructionError( nChunk, nInstruction, "%s is a bound form; files hold only codes below LAST_SERIALIZED_CODE", pName );
			else
				InstructionError( nChunk, nInstruction, "%d is no instruction code", int( eCode ) );
			pOp->m_nCode = int16_t( NOP );
			return eCode;
		}
		if ( !CheckOperands( nChunk, nInstruction ) )
		{
			pOp->m_nCode = int16_t( NOP );
			return eCode;
		}
		uint16_t nOperands = PulseInstructionCode_GetOperands( int( eCode ) );
		int r0 = instruction.m_nReg0, r1 = instruction.m_nReg1, r2 = instruction.m_nReg2;
		if ( nOperands & PULSE_OPERAND_REG0 )
		{
			pOp->m_nReg0 = RegOffset( nChunk, r0 );
			pData->m_nRegIndex0 = uint16_t( r0 );
		}
		if ( nOperands & PULSE_OPERAND_REG1 )
			pOp->m_nReg1 = RegOffset( nChunk, r1 );
		if ( nOperands & PULSE_OPERAND_REG2 )
			pOp->m_nReg2 = RegOffset( nChunk, r2 );

		if ( IsGenericOperator( eCode ) )
		{
			bool bUnary = eCode == NEGATE;
			PulseValueType_t eLeft = RegType( nChunk, r1 ).GetBaseType();
			PulseValueType_t eRight = bUnary ? PVAL_VOID : RegType( nChunk, r2 ).GetBaseType();
			PulseInstructionCode_t eTyped;
			PulseValueType_t eResult;
			CUtlString left, right;
			if ( !PulseInstructionCode_FindTypedForm( eCode, eLeft, eRight, &eTyped, &eResult ) )
			{
				if ( bUnary )
					InstructionError( nChunk, nInstruction, "no typed form for %s", TypeText( RegType( nChunk, r1 ), &left ) );
				else
					InstructionError( nChunk, nInstruction, "no typed form for %s and %s", TypeText( RegType( nChunk, r1 ), &left ), TypeText( RegType( nChunk, r2 ), &right ) );
				return eCode;
			}
			if ( eLeft == PVAL_ARRAY && RegType( nChunk, r1 ) != RegType( nChunk, r2 ) )
			{
				InstructionError( nChunk, nInstruction, "compares %s with %s", TypeText( RegType( nChunk, r1 ), &left ), TypeText( RegType( nChunk, r2 ), &right ) );
				return eCode;
			}
			if ( !ExpectType( nChunk, nInstruction, "the result", r0, eResult ) )
				return eCode;
			pOp->m_nCode = int16_t( eTyped );
			pData->m_pType = &RegType( nChunk, r1 );
			return eTyped;
		}

		switch ( eCode )
		{
		case JUMP: pOp->m_nReg1 = uint16_t( instruction.m_nDestInstruction ); break;
		case JUMP_COND:
			ExpectType( nChunk, nInstruction, "the condition", r0, PVAL_BOOL );
			pOp->m_nReg1 = uint16_t( instruction.m_nDestInstruction );
			break;
		case CHUNK_LEAP: pData->m_nA = instruction.m_nChunk; break;
		case CHUNK_LEAP_COND:
			ExpectType( nChunk, nInstruction, "the condition", r0, PVAL_BOOL );
			pData->m_nA = instruction.m_nChunk;
			break;
		case RETURN_VALUE: pData->m_pType = &RegType( nChunk, r0 ); break;
		case DETACH_REGISTER: pData->m_pType = &RegType( nChunk, r0 ); break;
		case PULSE_CALL_SYNC:
		case PULSE_CALL_ASYNC_FIRE:
		{
			auto pPlan = std::make_unique<PulseCallPlan_t>();
			if ( CheckCall( nChunk, nInstruction, m_Def.m_CallInfos[ size_t( instruction.m_nCallInfoIndex ) ], instruction.m_nChunk, pPlan.get() ) )
			{
				pData->m_nA = instruction.m_nChunk;
				pData->m_nB = instruction.m_nDestInstruction;
				pData->m_pData = pPlan.get();
				chunk.m_CallPlans.push_back( std::move( pPlan ) );
			}
			break;
		}
		case CELL_INVOKE:
		case LIBRARY_INVOKE:
		{
			const CPulse_InvokeBinding &binding = m_Def.m_InvokeBindings[ size_t( instruction.m_nInvokeBindingIndex ) ];
			if ( !binding.m_pFunction )
				break; // reported with the invoke bindings
			if ( ( eCode == CELL_INVOKE ) != ( binding.m_nCellIndex >= 0 ) )
			{
				InstructionError( nChunk, nInstruction, "Invoke%d is a %s call", instruction.m_nInvokeBindingIndex, binding.m_nCellIndex >= 0 ? "cell" : "library" );
				break;
			}
			auto pPlan = std::make_unique<PulseInvokePlan_t>();
			if ( BuildInvokePlan( nChunk, nInstruction, binding, pPlan.get() ) )
			{
				pData->m_pData = pPlan.get();
				chunk.m_InvokePlans.push_back( std::move( pPlan ) );
			}
			break;
		}
		case SET_VAR:
		case SET_VAR_OBSERVABLE:
		case GET_VAR:
		case GET_VAR_DETACH:
		{
			const CPulse_Variable &var = m_Def.m_Vars[ size_t( instruction.m_nVar ) ];
			CUtlString what;
			what.Format( "V%d '%s'", instruction.m_nVar, var.m_Name.String() );
			if ( !ExpectStorage( nChunk, nInstruction, "the register", r0, var.m_Type, what ) )
				break;
			pData->m_nA = instruction.m_nVar;
			pData->m_nB = var.m_nStateOffset;
			pData->m_pType = &var.m_Type;
			if ( IsPlainBytes( var.m_Type ) && ( eCode == SET_VAR || eCode == GET_VAR ) )
			{
				pOp->m_nCode = int16_t( eCode == SET_VAR ? PULSE_OP_SET_VAR_BYTES : PULSE_OP_GET_VAR_BYTES );
				pOp->m_nReg1 = uint16_t( PulseValue_GetSize( var.m_Type ) );
				pOp->m_nReg2 = var.m_nStateOffset;
				pData->m_nC = instruction.m_nVar;
			}
			break;
		}
		case SET_VAR_ARRAY_ELEMENT_1D:
		{
			const CPulse_Variable &var = m_Def.m_Vars[ size_t( instruction.m_nVar ) ];
			CUtlString text;
			if ( !var.m_Type.IsArray() )
			{
				InstructionError( nChunk, nInstruction, "V%d '%s' is %s, not an array", instruction.m_nVar, var.m_Name.String(), TypeText( var.m_Type, &text ) );
				break;
			}
			if ( !ExpectType( nChunk, nInstruction, "the index", r2, PVAL_INT ) ||
				 !ExpectStorage( nChunk, nInstruction, "the value", r0, *var.m_Type.GetElementType(), "the element type" ) )
				break;
			pData->m_nA = instruction.m_nVar;
			pData->m_nB = var.m_nStateOffset;
			pData->m_pType = &var.m_Type;
			break;
		}
		case GET_CONST:
		{
			const CPulse_Constant &constant = m_Def.m_Constants[ size_t( instruction.m_nConstIdx ) ];
			CUtlString what;
			what.Format( "constant %d", instruction.m_nConstIdx );
			if ( !ExpectStorage( nChunk, nInstruction, "the register", r0, constant.m_Type, what ) )
				break;
			pData->m_nA = instruction.m_nConstIdx;
			pData->m_pType = &constant.m_Type;
			// Every constant with a size gets storage in the definition's buffer.
			if ( PulseValue_GetSize( constant.m_Type ) > 0 )
			{
				m_PendingConstantOps.push_back( { nChunk, nInstruction } );
				return GET_CONST_INLINE_STORAGE;
			}
			break;
		}
		case GET_ARRAY_ELEMENT:
		{
			if ( !RegType( nChunk, r1 ).IsArray() )
			{
				CUtlString text;
				InstructionError( nChunk, nInstruction, "the array (R%d) holds %s", r1, TypeText( RegType( nChunk, r1 ), &text ) );
				break;
			}
			if ( ExpectType( nChunk, nInstruction, "the index", r2, PVAL_INT ) )
				ExpectStorage( nChunk, nInstruction, "the result", r0, *RegType( nChunk, r1 ).GetElementType(), "the element type" );
			pData->m_pType = &RegType( nChunk, r1 );
			break;
		}
		case GET_DOMAIN_VALUE:
		{
			const CPulse_DomainValue &value = m_Def.m_DomainValues[ size_t( instruction.m_nDomainValueIdx ) ];
			if ( ExpectStorage( nChunk, nInstruction, "the register", r0, value.m_RequiredRuntimeType, "the domain value" ) )
			{
				pData->m_nA = instruction.m_nDomainValueIdx;
				pData->m_pType = &value.m_RequiredRuntimeType;
			}
			break;
		}
		case COPY:
		{
			// Only a copy between registers of one type moves a value.
			const CPulseValueFullType &to = RegType( nChunk, r0 ), &from = RegType( nChunk, r1 );
			pData->m_pType = &to;
			if ( to != from )
				pOp->m_nCode = PULSE_OP_COPY_MISMATCH;
			else if ( IsPlainBytes( to ) )
			{
				pOp->m_nCode = PULSE_OP_COPY_BYTES;
				pOp->m_nReg2 = uint16_t( PulseValue_GetSize( to ) );
			}
			break;
		}
		case NOT:
			ExpectType( nChunk, nInstruction, "the result", r0, PVAL_BOOL ) && ExpectType( nChunk, nInstruction, "the operand", r1, PVAL_BOOL );
			break;
		case AND:
		case OR:
			ExpectType( nChunk, nInstruction, "the result", r0, PVAL_BOOL ) && ExpectType( nChunk, nInstruction, "the first operand", r1, PVAL_BOOL ) &&
				ExpectType( nChunk, nInstruction, "the second operand", r2, PVAL_BOOL );
			break;
		case CONVERT_VALUE:
		{
			const CPulseValueFullType &to = RegType( nChunk, r0 ), &from = RegType( nChunk, r1 );
			if ( !PulseValue_CanConvert( from, to ) )
			{
				CUtlString fromText, toText;
				InstructionError( nChunk, nInstruction, "no conversion from %s to %s", TypeText( from, &fromText ), TypeText( to, &toText ) );
			}
			pData->m_pType = &to;
			break;
		}
		case REINTERPRET_INSTANCE:
			if ( RegType( nChunk, r0 ).GetBaseType() != RegType( nChunk, r1 ).GetBaseType() )
			{
				CUtlString fromText, toText;
				InstructionError( nChunk, nInstruction, "can't see %s as %s", TypeText( RegType( nChunk, r1 ), &fromText ), TypeText( RegType( nChunk, r0 ), &toText ) );
			}
			pData->m_pType = &RegType( nChunk, r0 );
			break;
		case GET_BLACKBOARD_REFERENCE:
		case SET_BLACKBOARD_REFERENCE:
			pData->m_nA = instruction.m_nBlackboardReferenceIdx;
			pData->m_pType = &RegType( nChunk, r0 );
			break;
		default: break;
		}
		return eCode;
	}

	// Entry chunks exist, and what enters a chunk from a cell lands inside it with its
	// arguments in its registers.
	void CheckRegisterMapTargets( const PulseRegisterMap_t &map, int nChunk, const char *pWhere )
	{
		const CPulse_Chunk &chunk = m_Def.m_Chunks[ size_t( nChunk ) ];
		for ( const PulseRegisterMapEntry_t &entry : map.m_BoundOut )
		{
			if ( entry.m_nRegister >= chunk.GetRegisterCount() )
				Error( "%s: '%s' goes to R%d, but C%d has %d register(s)", pWhere, entry.m_Name.String(), entry.m_nRegister, nChunk, chunk.GetRegisterCount() );
		}
	}

	void CheckEntriesAndOutflows()
	{
		for ( size_t i = 0; i < m_Def.m_Cells.size(); ++i )
		{
			CPulseCell_Base *pCell = m_Def.m_Cells[ i ].get();
			if ( !pCell )
				continue;
			CUtlString where;
			where.Format( "Cell%zu (%s)", i, pCell->GetClassName() );
			if ( auto *pEntry = dynamic_cast<CPulseCell_Inflow_BaseEntrypoint *>( pCell ) )
			{
				if ( pEntry->m_EntryChunk != -1 )
				{
					if ( pEntry->m_EntryChunk < 0 || size_t( pEntry->m_EntryChunk ) >= m_Def.m_Chunks.size() )
						Error( "%s: the entry chunk C%d does not exist", where.Get(), pEntry->m_EntryChunk );
					else if ( m_Def.m_Chunks[ size_t( pEntry->m_EntryChunk ) ].m_Instructions.empty() )
						Error( "%s: the entry chunk C%d has no instructions", where.Get(), pEntry->m_EntryChunk );
					else
						CheckRegisterMapTargets( pEntry->m_RegisterMap, pEntry->m_EntryChunk, where );
				}
			}
			if ( auto *pListener = dynamic_cast<CPulseCell_Inflow_ObservableVariableListener *>( pCell ) )
			{
				if ( !pListener->m_bSelfReference && !m_Def.GetBlackboardReference( pListener->m_nBlackboardReference ) )
					Error( "%s: m_nBlackboardReference %d names no blackboard reference", where.Get(), pListener->m_nBlackboardReference );
			}
			std::vector<CPulse_OutflowConnection *> outflows;
			pCell->GatherOutflows( &outflows );
			for ( const CPulse_OutflowConnection *pOutflow : outflows )
			{
				if ( !pOutflow->IsConnected() )
					continue;
				const CPulse_Chunk *pChunk = m_Def.GetChunk( pOutflow->m_nDestChunk );
				if ( !pChunk )
					Error( "%s: the outflow '%s' goes to C%d, which does not exist", where.Get(), pOutflow->m_SourceOutflowName.String(), pOutflow->m_nDestChunk );
				else if ( pOutflow->m_nInstruction >= pChunk->GetInstructionCount() )
					Error( "%s: the outflow '%s' goes to I%d, outside C%d (%d instruction(s))", where.Get(), pOutflow->m_SourceOutflowName.String(), pOutflow->m_nInstruction,
						   pOutflow->m_nDestChunk, pChunk->GetInstructionCount() );
				else
					CheckRegisterMapTargets( pOutflow->m_OutflowRegisterMap, pOutflow->m_nDestChunk, where );
			}
		}
	}

	// Builds each constant's value in the definition's buffer and points the GET_CONST
	// operations at it.
	void BuildConstantBuffer()
	{
		size_t nOffset = 0;
		for ( CPulse_Constant &constant : m_Def.m_Constants )
		{
			size_t nSize = PulseValue_GetSize( constant.m_Type );
			if ( nSize == 0 )
				continue;
			nOffset = AlignUp( nOffset, PulseValue_GetAlignment( constant.m_Type ) );
			constant.m_nStorageOffset = nOffset < MAX_OFFSET ? PulseRuntimeStateOffset_t( nOffset ) : PULSE_NO_STATE_OFFSET;
			nOffset += nSize;
		}
		if ( nOffset == 0 )
			return;
		m_Def.m_pConstantBuffer = static_cast<unsigned char *>( std::aligned_alloc( 16, AlignUp( nOffset, 16 ) ) );
		for ( CPulse_Constant &constant : m_Def.m_Constants )
		{
			if ( constant.m_nStorageOffset == PULSE_NO_STATE_OFFSET )
				continue;
			void *pValue = m_Def.m_pConstantBuffer + constant.m_nStorageOffset;
			PulseValue_Construct( constant.m_Type, pValue );
			PulseValue_LoadKV3( constant.m_Type, pValue, &constant.m_Value, nullptr );
		}
		for ( const auto &[ nChunk, nInstruction ] : m_PendingConstantOps )
		{
			PulseOp_t &op = m_Def.m_Chunks[ size_t( nChunk ) ].m_Ops[ size_t( nInstruction ) ];
			PulseOpData_t &data = m_Def.m_Chunks[ size_t( nChunk ) ].m_OpData[ size_t( nInstruction ) ];
			data.m_pData = m_Def.GetConstantStorage( data.m_nA );
			op.m_nCode = int16_t( GET_CONST_INLINE_STORAGE );
			if ( IsPlainBytes( *data.m_pType ) )
			{
				op.m_nCode = PULSE_OP_LOAD_BYTES;
				op.m_nReg1 = uint16_t( PulseValue_GetSize( *data.m_pType ) );
			}
		}
	}

	CPulseGraphDef &m_Def;
	PulseGraphMessages_t *m_pMessages;
	int m_nErrors = 0;
	std::vector<std::pair<int, int>> m_PendingConstantOps;
};

bool PulseGraphDef_IsStorableType( const CPulseValueFullType &type )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_VOID:
	case PVAL_CURSOR_FLOW:
	case PVAL_UNKNOWN:
	case PVAL_COUNT: return false;
	default:
		if ( !PulseValueType_IsKnown( type.GetBaseType() ) )
			return false;
	}
	if ( type.IsArray() )
		return type.GetElementType() && type.GetElementType()->IsValid() && PulseGraphDef_IsStorableType( *type.GetElementType() );
	return true;
}

bool PulseGraphDef_Bind( CPulseGraphDef *pDef, PulseGraphMessages_t *pMessages )
{
	if ( pDef->IsBound() )
		return true;
	PulseRuntime_RegisterClasses();
	return CPulseGraphBinder( pDef, pMessages ).Bind();
}

bool PulseGraphDef_Validate( const KeyValues3 &root, std::vector<CUtlString> *pMessages )
{
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadKV3( root, "", &messages );
	bool bValid = hDef && PulseGraphDef_Bind( hDef.Get(), &messages );
	for ( const std::vector<CUtlString> *pList : { &messages.m_Errors, &messages.m_Warnings } )
		pMessages->insert( pMessages->end(), pList->begin(), pList->end() );
	return bValid;
}
