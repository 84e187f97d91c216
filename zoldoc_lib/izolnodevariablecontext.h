#pragma once
// What a node's variable editors ask about the world around the node: the domain values a
// binding may name, the attachment points of the preview's entities, the configurations of
// the system, and the variables of the same name in related files. The property domain
// gives a node its context when it shows it; a node never shown has none.

#include "core/containers/utlvector.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class CPulseValueFullType;
struct ZolNamedValueRecord_t;

class IZolNodeVariableContext
{
public:
	virtual ~IZolNodeVariableContext() = default;
	virtual void GetDomainValues( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) = 0;
	// pEntity: "self", "parent" or "self_with_wearables"; null or anything else is self.
	virtual void GetAttachmentNames( const char *pEntity, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) = 0;
	virtual void GetConfigurationNames( CUtlVector<ToolAttrGenericChoice_t> *pChoices ) = 0;
	// The variables of that name (ignoring case) in the family, this file's included.
	virtual void GetSharedVariables( const char *pName, CUtlVector<ZolNamedValueRecord_t> *pRecords ) = 0;
};
