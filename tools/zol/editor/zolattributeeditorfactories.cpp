#include "tools/zol/editor/zolattributeeditorfactories.h"

#include "core/host/ipropertyeditorsystem.h"
#include "core/platform/fatalerror.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h"
#include "tools/zol/editor/inputs/particlefloatinputeditor.h"
#include "tools/zol/editor/inputs/particlemodelinputeditor.h"
#include "tools/zol/editor/inputs/particletransforminputeditor.h"
#include "tools/zol/editor/inputs/particlevariablerefeditor.h"
#include "tools/zol/editor/inputs/particlevecinputeditor.h"
#include "tools/zol/editor/properties/zolpickereditors.h"

namespace
{
// One factory per editor class, made at its first registration; the editors read the
// attribute's value as they are made.
template <typename E, typename Base = CPropertyAttributeEditorFactoryBaseVariableHeight>
CPropertyAttributeEditorFactoryBase *MakeFactory( const char *pName )
{
	static CPropertyAttributeEditorFactory<E, Base> s_Factory( pName, 1 );
	return &s_Factory;
}

const ZolAttributeEditorFactoryEntry_t s_Factories[] = {
	{ "SequencePicker", "CQAttributeEditor_SequencePicker", true, &MakeFactory<CQAttributeEditor_SequencePicker, CPropertyAttributeEditorFactoryBaseFixedHeight> },
	{ "SoundPicker", "CQAttributeEditor_SoundPicker", true, &MakeFactory<CQAttributeEditor_SoundPicker, CPropertyAttributeEditorFactoryBaseFixedHeight> },
	{ "PerParticleFloatInput", "CQPerParticleFloatInputEditor", false, &MakeFactory<CQPerParticleFloatInputEditor> },
	{ "CollectionFloatInput", "CQParticleCollectionFloatInput", false, &MakeFactory<CQParticleCollectionFloatInput> },
	{ "CollectionRendererFloatInput", "CQParticleCollectionRendererFloatInput", false, &MakeFactory<CQParticleCollectionRendererFloatInput> },
	{ "RemapFloatInput", "CQParticleRemapFloatInput", false, &MakeFactory<CQParticleRemapFloatInput> },
	{ "PerParticleVecInput", "CQPerParticleVecInputEditor", false, &MakeFactory<CQPerParticleVecInputEditor> },
	{ "CollectionVecInput", "CQParticleCollectionVecInput", false, &MakeFactory<CQParticleCollectionVecInput> },
	{ "CollectionRendererVecInput", "CQParticleCollectionRendererVecInput", false, &MakeFactory<CQParticleCollectionRendererVecInput> },
	{ "TransformInput", "CQParticleTransformInputEditor", false, &MakeFactory<CQParticleTransformInputEditor> },
	{ "ModelInput", "CQParticleModelInputEditor", false, &MakeFactory<CQParticleModelInputEditor> },
	{ "LedgeChoice", "CQAttributeEditor_LedgeChoice", false, &MakeFactory<CQAttributeEditor_LedgeChoice> },
	{ "ParticleVariableRef", "CQParticleVariableRefEditor", true, &MakeFactory<CQParticleVariableRefEditor, CPropertyAttributeEditorFactoryBaseFixedHeight> },
};
} // namespace

const ZolAttributeEditorFactoryEntry_t *GetZolAttributeEditorFactories( int *pCount )
{
	*pCount = int( sizeof( s_Factories ) / sizeof( s_Factories[ 0 ] ) );
	return s_Factories;
}

int RegisterZolAttributeEditorFactories()
{
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( !pSystem )
		Plat_FatalError( "Cannot register an attribute editor factory before we're connected to the Property Editor System.\n" );
	int nRegistered = 0;
	for ( const ZolAttributeEditorFactoryEntry_t &entry : s_Factories )
	{
		// The factories live for the process; a system that has them already keeps them.
		CPropertyAttributeEditorFactoryBase *pFactory = entry.m_fnCreate( entry.m_pName );
		if ( pSystem->FindAttributeEditorFactory( entry.m_pName ) == pFactory )
			continue;
		if ( pFactory->RegisterWithPropertyEditorSystem() )
			++nRegistered;
	}
	return nRegistered;
}
