#pragma once
// Turning every read of one control point, across a family of definitions, into a read of
// one new variable. Three stages, and the stages are the design:
//
// 1. BuildActionList: every document of the family is copied (an open one with its unsaved
//    edits) and every function's reported use of the control point is typed and unified
//    into one variable type; each input field that reads the point becomes a step.
// 2. DryRun: every step runs against the copies and says what it would do. It runs again
//    after each change of the variable's name or type.
// 3. Apply: once only, every step runs for real on the documents the user edits, each
//    document under one undo unit of its own. Nothing is written to disk here.
//
// Each stage has its list of messages; nothing stops the pipeline, and the report shows the
// three lists for the user to read before Apply.

#include <memory>
#include <vector>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/toolutils2/errors/errormessagelist.h"

class CDocumentModifyStepBase;
struct HostControlPointUsage_t;
class CZolDoc;
class IAsset;
class IZolDocumentProvider;

// One document of the family.
struct ZolConversionDocument_t
{
	CUtlString m_AssetPath;
	IAsset *m_pAsset = nullptr;
	// The editor's document when the asset was open at the build; not owned.
	CZolDoc *m_pOpenDocument = nullptr;
	// The working copy the first two stages read; the real document is opened by stage three.
	std::unique_ptr<CZolDoc> m_pWorkingCopy;
	std::vector<std::unique_ptr<CDocumentModifyStepBase>> m_Steps;

	ZolConversionDocument_t();
	~ZolConversionDocument_t();
};

class CZolVariableConversionPlan
{
public:
	static constexpr const char *DEFAULT_VARIABLE_NAME = "Placeholder";

	CZolVariableConversionPlan( IZolDocumentProvider *pDocuments, int nControlPoint );
	~CZolVariableConversionPlan();
	CZolVariableConversionPlan( const CZolVariableConversionPlan & ) = delete;
	CZolVariableConversionPlan &operator=( const CZolVariableConversionPlan & ) = delete;

	// A document of the family, before the build.
	void AddDocument( IAsset *pAsset );

	void BuildActionList();
	void DryRun();
	// False when the plan was applied already: Apply runs once.
	bool Apply();

	int GetControlPoint() const { return m_nControlPoint; }
	const CUtlString &GetVariableName() const { return m_VariableName; }
	void SetVariableName( const char *pName ) { m_VariableName = pName ? pName : ""; }
	// Invalid until the build met a use that has a type.
	const CPulseValueFullType &GetVariableType() const { return m_VariableType; }
	void SetVariableType( const CPulseValueFullType &type ) { m_VariableType = type; }
	bool IsApplied() const { return m_bApplied; }

	CErrorMessageList &GetBuildMessages() { return m_BuildMessages; }
	CErrorMessageList &GetDryRunMessages() { return m_DryRunMessages; }
	CErrorMessageList &GetModifyMessages() { return m_ModifyMessages; }
	const CErrorMessageList &GetBuildMessages() const { return m_BuildMessages; }
	const CErrorMessageList &GetDryRunMessages() const { return m_DryRunMessages; }
	const CErrorMessageList &GetModifyMessages() const { return m_ModifyMessages; }
	bool HasErrorsBeforeApply() const { return m_BuildMessages.GetErrorCount() > 0 || m_DryRunMessages.GetErrorCount() > 0; }

	const std::vector<std::unique_ptr<ZolConversionDocument_t>> &GetDocuments() const { return m_Documents; }
	ZolConversionDocument_t *FindDocument( IAsset *pAsset ) const;
	int GetStepCount() const;
	IZolDocumentProvider *GetDocumentProvider() const { return m_pDocuments; }

private:
	void BuildDocument( ZolConversionDocument_t &record );
	// The steps of the function's input fields that read the control point; the message
	// when none would convert.
	void FindSteps( ZolConversionDocument_t &record, int nType, int nIndex );
	void RunSteps( bool bCommit, CErrorMessageList *pMessages );

	IZolDocumentProvider *m_pDocuments;
	int m_nControlPoint;
	CUtlString m_VariableName{ DEFAULT_VARIABLE_NAME };
	CPulseValueFullType m_VariableType;
	std::vector<std::unique_ptr<ZolConversionDocument_t>> m_Documents;
	bool m_bApplied = false;
	CErrorMessageList m_BuildMessages;
	CErrorMessageList m_DryRunMessages;
	CErrorMessageList m_ModifyMessages;
};

// The variable type a use asks for: an input's use by the input's class (a model input
// asks for a model), a use the function makes itself by its usage kind. Invalid when the
// use has none.
CPulseValueFullType GetConversionTypeOfUsage( const HostControlPointUsage_t &usage );
// Two types of uses as one: equal types are themselves; vectors, transforms and particle
// entity handles widen to the wider; anything else doesn't unify (invalid).
CPulseValueFullType UnifyConversionTypes( const CPulseValueFullType &a, const CPulseValueFullType &b );
