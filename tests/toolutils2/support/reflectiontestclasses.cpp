#include "tests/toolutils2/support/reflectiontestclasses.h"

#include "tools/toolutils2/toolattr/toolattrtable.h"

CSchemaSystemTypeScope *RegisterReflectionTestClasses()
{
	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "reflection_tests" );
	RegisterToolClass<CTestOperator>( pScope );
	RegisterToolClass<CTestRandomInput>( pScope );
	RegisterToolClass<CTestLayerSet>( pScope );
	RegisterKV3TransferClass<CTestChain>( pScope );
	RegisterKV3TransferClass<CTestTextured>( pScope );
	return pScope;
}
