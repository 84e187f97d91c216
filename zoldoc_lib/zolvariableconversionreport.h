#pragma once
// What a conversion plan tells its user: the HTML report of its three message lists (each
// message a link to its node), the status line over it, and the same messages as report
// lines for the command line.

#include "core/text/utlstring.h"

class CZolFileReport;
class CZolVariableConversionPlan;
class IZolDocumentProvider;

// The report as the conversion dialog shows it; the third list only after Apply.
CUtlString BuildZolConversionReportHtml( const CZolVariableConversionPlan &plan );

// "Errors reported! Check results carefully." after a faulty Apply, "Errors reported, proceed
// with caution" with faults before it, else empty. pbError tells whether it is an error.
const char *GetZolConversionStatusText( const CZolVariableConversionPlan &plan, bool *pbError );

// Every message as a line "FILE: [error: ]stage: where: text", the file by the provider's
// name for it, the place a function's description ("Initializers #1 Position Along Ring").
// Messages about no file (there are few) go under pOtherFile.
void AppendZolConversionFindings( const CZolVariableConversionPlan &plan, IZolDocumentProvider *pDocuments, const char *pOtherFile, CZolFileReport *pReport );
