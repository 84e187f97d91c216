#pragma once
// Messages of tool operations that go on after a fault (a conversion across files, the
// read of a description file): each message has a severity and may name where it arose
// through a context, a typed value that can tell itself as text and be kept.

#include "core/text/utlstring.h"

enum ErrorSeverity_t : int
{
	ERROR_SEVERITY_INFO = 0,
	ERROR_SEVERITY_WARNING = 1,
	ERROR_SEVERITY_ERROR = 2,
};

class IBaseErrorContext
{
public:
	virtual ~IBaseErrorContext() = default;
	// What kind of place the context names ("Zol Node").
	virtual const char *GetName() const = 0;
	virtual void GetValueText( CUtlString *pOut ) const = 0;
	// A copy that a list of messages can keep after the operation.
	virtual IBaseErrorContext *Clone() const = 0;
};

// A context holding a value of any type that has a free function
// "void ErrorContextValueText( const T &, CUtlString * )".
template <typename T> class CErrorContextValue final : public IBaseErrorContext
{
public:
	CErrorContextValue( const char *pName, const T &value ) : m_Name( pName ), m_Value( value ) {}
	const char *GetName() const override { return m_Name.Get(); }
	void GetValueText( CUtlString *pOut ) const override { ErrorContextValueText( m_Value, pOut ); }
	IBaseErrorContext *Clone() const override { return new CErrorContextValue<T>( m_Name.Get(), m_Value ); }
	const T &GetValue() const { return m_Value; }

private:
	CUtlString m_Name;
	T m_Value;
};

class IErrorListener
{
public:
	// pContext may be null; a listener that keeps it clones it.
	virtual void OnErrorMessage( int nSeverity, const char *pText, const IBaseErrorContext *pContext ) = 0;

protected:
	~IErrorListener() = default;
};
