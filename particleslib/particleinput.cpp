#include "particleslib/particleinput.h"

#include <typeinfo>

#include "core/schema/schemasystem.h"

const CSchemaClassInfo *CParticleInput::GetClassBinding() const
{
	// Registration records each class by its type, so the dynamic class finds its own record.
	return SchemaSystem()->FindClassByTypeInfo( typeid( *this ) );
}
