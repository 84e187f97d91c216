#pragma once
// The steps of a conversion plan. Each runs twice at least: without committing against the
// plan's working copies (to say what it would do), and once committing, on the document
// the user edits. Results: 0 failed, 1 done, 2 doesn't apply.

#include "core/text/utlstring.h"
#include "zoldoc_lib/zolnodelink.h"

class CErrorMessageList;
class CPulseValueFullType;
class CZolVariableConversionPlan;
class KeyValues3;

enum ZolStepResult_t : int
{
	ZOL_STEP_FAILED = 0,
	ZOL_STEP_DONE = 1,
	ZOL_STEP_NOT_APPLICABLE = 2,
};

class CDocumentModifyStepBase
{
public:
	explicit CDocumentModifyStepBase( const ZolNodeLink_t &link ) : m_Link( link ) {}
	virtual ~CDocumentModifyStepBase() = default;
	virtual int Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages ) = 0;

	const ZolNodeLink_t &GetLink() const { return m_Link; }

protected:
	ZolNodeLink_t m_Link;
};

// First in each document: its undo unit, and the new variable.
class CCreateUndoForDocumentAndAddVariable final : public CDocumentModifyStepBase
{
public:
	using CDocumentModifyStepBase::CDocumentModifyStepBase;
	int Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages ) override;
};

// Last in each document: the panels rebuild.
class CCompleteModifications final : public CDocumentModifyStepBase
{
public:
	using CDocumentModifyStepBase::CDocumentModifyStepBase;
	int Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages ) override;
};

// One input field of one function.
class CConvertFunctionNodeKeysBase : public CDocumentModifyStepBase
{
public:
	CConvertFunctionNodeKeysBase( const ZolNodeLink_t &link, const char *pField ) : CDocumentModifyStepBase( link ), m_Field( pField ) {}
	int Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages ) override;
	// The field's old value (null when missing) into its new one, for a read of the control
	// point by the variable of that name and type.
	virtual int ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
		CErrorMessageList *pMessages ) = 0;

	const CUtlString &GetField() const { return m_Field; }

protected:
	CUtlString m_Field;
};

class CConvertCPRead_FloatInput final : public CConvertFunctionNodeKeysBase
{
public:
	using CConvertFunctionNodeKeysBase::CConvertFunctionNodeKeysBase;
	int ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
		CErrorMessageList *pMessages ) override;
};

class CConvertCPRead_VecInput final : public CConvertFunctionNodeKeysBase
{
public:
	using CConvertFunctionNodeKeysBase::CConvertFunctionNodeKeysBase;
	int ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
		CErrorMessageList *pMessages ) override;
};

class CConvertCPRead_TransformInput final : public CConvertFunctionNodeKeysBase
{
public:
	using CConvertFunctionNodeKeysBase::CConvertFunctionNodeKeysBase;
	int ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
		CErrorMessageList *pMessages ) override;
};

class CConvertCPRead_ModelInput final : public CConvertFunctionNodeKeysBase
{
public:
	using CConvertFunctionNodeKeysBase::CConvertFunctionNodeKeysBase;
	int ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
		CErrorMessageList *pMessages ) override;
};
