#pragma once
// A listener that keeps every message it hears, counts them by severity, and passes each
// on to the next listener (when there is one).

#include <memory>
#include <vector>

#include "tools/toolutils2/errors/errorlistener.h"

struct ErrorMessage_t
{
	CUtlString m_Text;
	int m_nSeverity = ERROR_SEVERITY_INFO;
	CUtlString m_ContextName;
	CUtlString m_ContextValue;
	std::unique_ptr<IBaseErrorContext> m_pContext;
};

class CErrorMessageList final : public IErrorListener
{
public:
	explicit CErrorMessageList( IErrorListener *pNext = nullptr ) : m_pNext( pNext ) {}

	void OnErrorMessage( int nSeverity, const char *pText, const IBaseErrorContext *pContext ) override;
	// Formats a message and hears it.
	void Report( int nSeverity, const IBaseErrorContext *pContext, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) );
	// Forgets the messages and the counts.
	void Clear();

	const std::vector<ErrorMessage_t> &GetMessages() const { return m_Messages; }
	int GetErrorCount() const { return m_nErrors; }
	int GetWarningCount() const { return m_nWarnings; }
	// Infos, and severities outside the three.
	int GetOtherCount() const { return m_nOthers; }

private:
	IErrorListener *m_pNext;
	std::vector<ErrorMessage_t> m_Messages;
	int m_nErrors = 0;
	int m_nWarnings = 0;
	int m_nOthers = 0;
};
