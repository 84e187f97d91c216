#pragma once
// Ports: the value inputs and outputs and the flow inputs and outputs of a node. An input
// says where its value comes from (its value source): a literal, a variable or constant,
// a connected output, a mirrored input of an ancestor. Flow ports own the sequence points
// through which the compiler follows the flow.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulsedoc_lib/compiler/pulsesequencepoint.h"

class CPulseDocNode;
class CPulseDocMessages;
class CPulseDocLoadContext;
class CPulseDoc_Connection_Inparam;
class CPulseDoc_BaseFlow;
class CBasePulseInparamPort;
class CBasePulseOutparamPort;
class CPulseInflowPort;
class CPulseOutflowPort;
class CCompiledChunk;

enum PulsePortUserVisibility_t : int
{
	PULSE_PORT_VISIBILITY_UNSPECIFIED = 0,
	PULSE_PORT_VISIBILITY_SHOW = 1,
	PULSE_PORT_VISIBILITY_HIDE = 2,
};

// Where an input takes its value from; stored by key ("literal", "var", ...).
enum PulseValueSource_t : int
{
	PULSE_VALUE_SOURCE_LITERAL = 0,
	PULSE_VALUE_SOURCE_VAR = 1,
	PULSE_VALUE_SOURCE_DOMAIN_VALUE = 2,
	PULSE_VALUE_SOURCE_PORT = 3,
	PULSE_VALUE_SOURCE_BLACKBOARD_REF = 4,
	PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM = 5,
	PULSE_VALUE_SOURCE_COUNT = 6,
};
const char *PulseValueSource_GetKey( PulseValueSource_t eSource );   // "literal"
const char *PulseValueSource_GetLabel( PulseValueSource_t eSource ); // "Literal Value"

// The command names of ports.
#define PULSE_PORT_CMD_TOGGLE_CANVAS_VISIBILITY "CBasePulsePort::CMD_TOGGLE_CANVAS_VISIBILITY"
#define PULSE_PORT_CMD_RESET_CANVAS_VISIBILITY "CBasePulsePort::CMD_RESET_CANVAS_VISIBILITY"
#define PULSE_PORT_CMD_CHANGE_VALUE_SOURCE "CPulseValuePort::CMD_CHANGE_VALUE_SOURCE"

class CBasePulsePort
{
public:
	CBasePulsePort( CPulseDocNode *pOwner, const char *pName, const char *pFriendlyName = nullptr, const char *pDescription = nullptr );
	virtual ~CBasePulsePort() = default;
	CBasePulsePort( const CBasePulsePort & ) = delete;
	CBasePulsePort &operator=( const CBasePulsePort & ) = delete;

	CPulseDocNode *GetOwner() const { return m_pOwner; }
	const char *GetName() const { return m_Name.Get(); }
	void SetName( const char *pName ) { m_Name.Set( pName ); }
	// The friendly name, or the name when there is none.
	const char *GetFriendlyName() const { return m_FriendlyName.IsEmpty() ? m_Name.Get() : m_FriendlyName.Get(); }
	virtual CPulseValueFullType GetType() const { return CPulseValueFullType(); }
	const char *GetDescription() const { return m_Description.Get(); }
	virtual void Validate( CPulseDocMessages * ) const {}

	virtual CBasePulseInparamPort *AsInparam() { return nullptr; }
	virtual CPulseInflowPort *AsInflow() { return nullptr; }
	virtual CBasePulseOutparamPort *AsOutparam() { return nullptr; }
	virtual CPulseOutflowPort *AsOutflow() { return nullptr; }

	// The port's stored table (visibility; an input adds its value). A port with nothing
	// to store writes nothing (an output at its defaults).
	virtual void SaveKV3( KeyValues3 *pTable ) const;
	virtual void LoadKV3( const KeyValues3 *pValue, CPulseDocLoadContext *pContext );
	virtual bool HasDataToSave() const { return m_eUserVisibility != PULSE_PORT_VISIBILITY_UNSPECIFIED; }

	// Canvas visibility: the user's choice, else the port's default.
	bool IsVisible() const;
	// The port commands: "Toggle Visibility", and "Reset Visibility" (offered only when
	// the user chose).
	void ToggleVisibility();
	bool CanResetVisibility() const { return m_eUserVisibility != PULSE_PORT_VISIBILITY_UNSPECIFIED; }
	void ResetVisibility() { m_eUserVisibility = PULSE_PORT_VISIBILITY_UNSPECIFIED; }

	// Description keys of the port ("port_restrict_to_literal", "group", ...).
	KeyValues3 m_Metadata;
	bool m_bDefaultVisible = true;
	PulsePortUserVisibility_t m_eUserVisibility = PULSE_PORT_VISIBILITY_UNSPECIFIED;

protected:
	CPulseDocNode *m_pOwner;
	CUtlString m_Name;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
};

class CBasePulseInparamPort : public CBasePulsePort
{
public:
	// pKey is where the node stores the port (its member name); the port's name when null.
	CBasePulseInparamPort( CPulseDocNode *pOwner, const char *pName, const CPulseValueFullType &type, const char *pKey = nullptr, const char *pFriendlyName = nullptr,
						   const char *pDescription = nullptr );

	CBasePulseInparamPort *AsInparam() override { return this; }
	const char *GetKey() const { return m_Key.Get(); }

	enum TypeKind_t
	{
		TYPE_DECLARED = 0, // the declared base type
		TYPE_REFINED = 2,  // with the user's refinement
		TYPE_REQUIRED = 3, // the type a value must have
	};
	CPulseValueFullType GetTypeOfKind( TypeKind_t eKind ) const;
	CPulseValueFullType GetType() const override { return GetTypeOfKind( TYPE_REQUIRED ); }
	void SetDeclaredType( const CPulseValueFullType &type ) { m_Type = type; }
	void SetUserRefinedType( const CPulseValueFullType &type ) { m_UserRefinedType = type; }

	PulseValueSource_t GetValueSource() const { return m_eSource; }
	void SetValueSource( PulseValueSource_t eSource ) { m_eSource = eSource; }
	// A literal (or domain value) and its KV3 value.
	const KeyValues3 &GetLiteralValue() const { return m_LiteralValue; }
	void SetLiteral( const KeyValues3 &value );
	PulseDocNodeID_t GetVarOrConstID() const { return m_nVarOrConstID; }
	void SetVarReference( PulseDocNodeID_t nID );
	PulseDocNodeID_t GetMirroredAncestorNodeID() const { return m_nMirroredAncestorNodeID; }
	const char *GetMirroredAncestorInparamName() const { return m_MirroredAncestorInparamName.Get(); }
	void SetMirroredAncestor( PulseDocNodeID_t nNodeID, const char *pName );
	// A value node inside this node (an expression's part) feeds the port directly.
	void SetInternalSource( CPulseDocNode *pValueNode, CBasePulseOutparamPort *pOutparam );
	// An input of an ancestor inside the same node (an expression's "$name") stands for it.
	void SetMirroredPort( const CBasePulseInparamPort *pPort );
	// Takes the other port's source and value (the expression builder moves arguments).
	void CopySourceFrom( const CBasePulseInparamPort &other );
	CPulseDocNode *GetInternalSourceNode() const { return m_pInternalSource; }
	CBasePulseOutparamPort *GetInternalSourceOutparam() const { return m_pInternalOutparam; }
	const CBasePulseInparamPort *GetMirroredPort() const { return m_pMirroredPort; }

	// The connection child of the owner that feeds this port, or null.
	const CPulseDoc_Connection_Inparam *FindConnection() const;
	// Whether the user may change the source ("port_restrict_to_literal" off).
	bool CanChangeValueSource() const;
	// The label of the source command: the source's label.
	const char *GetValueSourceCommandLabel() const { return PulseValueSource_GetLabel( m_eSource ); }

	// The register holding the port's value, of the type it wants, or PULSE_INVALID_REGISTER
	// after a report.
	uint16_t CompileToRegister( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const;

	void Validate( CPulseDocMessages *pMessages ) const override;
	void SaveKV3( KeyValues3 *pTable ) const override;
	// A table of the stored keys, or a plain value, which is the literal in short.
	void LoadKV3( const KeyValues3 *pValue, CPulseDocLoadContext *pContext ) override;
	bool HasDataToSave() const override { return true; }
	// Whether the file said anything about the port (one that says nothing and has a
	// connection takes its value from it).
	bool WasStored() const { return m_bStored; }
	// The default value of the description ("default_value"), the literal until the user sets one.
	void SetDefaultValue( const KeyValues3 &value );

	// The inflow this port belongs to ("associated_inflow_name"); empty for all.
	CUtlString m_AssociatedInflow;

private:
	CUtlString m_Key;
	CPulseValueFullType m_Type;
	CPulseValueFullType m_UserRefinedType;
	PulseValueSource_t m_eSource = PULSE_VALUE_SOURCE_LITERAL;
	KeyValues3 m_LiteralValue;
	bool m_bLiteralStringSingleQuotedForDisplay = false;
	PulseDocNodeID_t m_nVarOrConstID = -1;
	KeyValues3 m_BlackboardReference;
	PulseDocNodeID_t m_nMirroredAncestorNodeID = -1;
	CUtlString m_MirroredAncestorInparamName;
	CPulseDocNode *m_pInternalSource = nullptr;
	CBasePulseOutparamPort *m_pInternalOutparam = nullptr;
	const CBasePulseInparamPort *m_pMirroredPort = nullptr;
	bool m_bStored = false;
};

class CBasePulseOutparamPort : public CBasePulsePort
{
public:
	CBasePulseOutparamPort( CPulseDocNode *pOwner, const char *pName, const CPulseValueFullType &type, const char *pFriendlyName = nullptr,
							const char *pDescription = nullptr );
	CBasePulseOutparamPort *AsOutparam() override { return this; }
	CPulseValueFullType GetType() const override { return m_Type; }
	void SetType( const CPulseValueFullType &type ) { m_Type = type; }

	// The outflow this output belongs to ("associated_outflow_name"); empty for all.
	CUtlString m_AssociatedOutflow;

private:
	CPulseValueFullType m_Type;
};

// How a flow input leads on.
enum PulseInflowMode_t : int
{
	PULSE_INFLOW_SIMPLE = 0,     // on to the point given at construction
	PULSE_INFLOW_YIELDS = 1,     // the cursor can stop here; the flow ends at the port
	PULSE_INFLOW_TERMINATES = 2, // no way on
};

class CPulseInflowPort : public CBasePulsePort
{
public:
	// Simple ports lead on to pPrimary; the port's own point is what connections reach.
	CPulseInflowPort( CPulseDocNode *pOwner, const char *pName, const char *pFriendlyName, bool bDefault, const CPulseSequencePoint *pPrimary,
					  PulseInflowMode_t eMode = PULSE_INFLOW_SIMPLE );
	CPulseInflowPort *AsInflow() override { return this; }

	CPulseSequencePoint &GetPoint() { return m_Point; }
	const CPulseSequencePoint &GetPoint() const { return m_Point; }
	bool IsDefault() const { return m_bDefault; }
	PulseInflowMode_t GetMode() const { return m_eMode; }

private:
	CPulseSequencePoint m_Point;
	bool m_bDefault;
	PulseInflowMode_t m_eMode;
};

class CPulseOutflowPort : public CBasePulsePort
{
public:
	CPulseOutflowPort( CPulseDoc_BaseFlow *pOwner, const char *pName, const char *pFriendlyName, bool bDefault, bool bBackedByVariable = false );
	CPulseOutflowPort *AsOutflow() override { return this; }

	CPulseSequencePoint &GetPoint() { return m_Point; }
	const CPulseSequencePoint &GetPoint() const { return m_Point; }
	bool IsDefault() const { return m_bDefault; }
	bool IsBackedByVariable() const { return m_bBackedByVariable; }
	CPulseDoc_BaseFlow *GetFlowOwner() const { return m_pFlowOwner; }

	// The point the flow goes on to from this exit (a later sibling for a default exit,
	// else the connection's target), or null: the cursor ends there. pTargetNode, when
	// given, receives the node reached.
	const CPulseSequencePoint *ResolveTarget( const CPulseDocNode **ppTargetNode = nullptr ) const;
	void Validate( CPulseDocMessages *pMessages ) const override;

private:
	CPulseSequencePoint m_Point;
	CPulseDoc_BaseFlow *m_pFlowOwner;
	bool m_bDefault;
	bool m_bBackedByVariable;
};
