#pragma once
// The editors of the particle editor's fields that pick a name or number from a list kept
// elsewhere: a sprite sequence, a sound, an entry of a data file. They are the panel's own
// editor with the form that fits: the sequence a number field (middle-drag to step), the
// sound a name field, the data file entry a combo of the entries the domain knows, in
// which a name may also be typed (the domain has none while no data file manager is
// connected).

#include "tools/toolutils2/widgets/propertyeditor/attributeeditordomainagnostic.h"

class CQAttributeEditor_SequencePicker : public CQAttributeEditor_DomainAgnostic
{
	Q_OBJECT
public:
	using CQAttributeEditor_DomainAgnostic::CQAttributeEditor_DomainAgnostic;
};

class CQAttributeEditor_SoundPicker : public CQAttributeEditor_DomainAgnostic
{
	Q_OBJECT
public:
	using CQAttributeEditor_DomainAgnostic::CQAttributeEditor_DomainAgnostic;
};

class CQAttributeEditor_LedgeChoice : public CQAttributeEditor_DomainAgnostic
{
	Q_OBJECT
public:
	using CQAttributeEditor_DomainAgnostic::CQAttributeEditor_DomainAgnostic;
	// The row offers the domain's entries as suggestions.
	void Initialize( const PropertyEditorInit_t &init ) override;
};
