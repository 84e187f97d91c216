#include "tools/zol/editor/zolattributeeditorfactories.h"

#include "core/host/ipropertyeditorsystem.h"
#include "core/platform/fatalerror.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"

namespace
{
const ZolAttributeEditorFactoryEntry_t s_Factories[] = {
	{ "SequencePicker", "CQAttributeEditor_SequencePicker", true, nullptr },
	{ "SoundPicker", "CQAttributeEditor_SoundPicker", true, nullptr },
	{ "PerParticleFloatInput", "CQPerParticleFloatInputEditor", false, nullptr },
	{ "CollectionFloatInput", "CQParticleCollectionFloatInput", false, nullptr },
	{ "CollectionRendererFloatInput", "CQParticleCollectionRendererFloatInput", false, nullptr },
	{ "RemapFloatInput", "CQParticleRemapFloatInput", false, nullptr },
	{ "PerParticleVecInput", "CQPerParticleVecInputEditor", false, nullptr },
	{ "CollectionVecInput", "CQParticleCollectionVecInput", false, nullptr },
	{ "CollectionRendererVecInput", "CQParticleCollectionRendererVecInput", false, nullptr },
	{ "TransformInput", "CQParticleTransformInputEditor", false, nullptr },
	{ "ModelInput", "CQParticleModelInputEditor", false, nullptr },
	{ "LedgeChoice", "CQAttributeEditor_LedgeChoice", false, nullptr },
	{ "ParticleVariableRef", "CQParticleVariableRefEditor", true, nullptr },
};
} // namespace

const ZolAttributeEditorFactoryEntry_t *GetZolAttributeEditorFactories( int *pCount )
{
	*pCount = int( sizeof( s_Factories ) / sizeof( s_Factories[ 0 ] ) );
	return s_Factories;
}

int RegisterZolAttributeEditorFactories()
{
	// Checked before the once-only mark, so an unconnected start always stops here.
	if ( !GetPropertyEditorSystem() )
		Plat_FatalError( "Cannot register an attribute editor factory before we're connected to the Property Editor System.\n" );
	static bool s_bRegistered = false;
	if ( s_bRegistered )
		return 0;
	s_bRegistered = true;
	int nRegistered = 0;
	for ( const ZolAttributeEditorFactoryEntry_t &entry : s_Factories )
	{
		if ( !entry.m_fnCreate )
			continue;
		// Factories stay registered for the life of the process.
		CPropertyAttributeEditorFactoryBase *pFactory = entry.m_fnCreate();
		if ( pFactory && pFactory->RegisterWithPropertyEditorSystem() )
			++nRegistered;
	}
	return nRegistered;
}
