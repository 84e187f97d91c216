#pragma once
// How serious a log message is. Channels drop messages below their minimum severity.

enum LoggingSeverity_t
{
	LS_DETAILED = 1, // verbose diagnostics, off by default
	LS_MESSAGE = 2,  // ordinary information
	LS_WARNING = 3,  // something went wrong but work goes on
	LS_ASSERT = 4,   // a broken assumption in the code
	LS_ERROR = 5,    // an operation failed
	LS_HIGHEST_SEVERITY = 6, // as a minimum: the channel is silent
};

// "Message", "Warning", ... for display; "Unknown" outside the range.
const char *LoggingSeverityName( LoggingSeverity_t eSeverity );
