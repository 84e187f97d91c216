#pragma once
// A console command: a name, help text and a function that gets the parsed arguments.
//
//   static ConCommand cl_particles_dumplist( "cl_particles_dumplist",
//       []( const CCommand &args ) { ... }, "Dump all new particles, optional name substring." );

#include "core/console/commandargs.h"
#include "core/console/concommandbase.h"

#include <functional>

class ConCommand : public ConCommandBase
{
public:
	using CommandCallbackFn_t = std::function<void( const CCommand &args )>;

	ConCommand( const char *pName, CommandCallbackFn_t fnCallback, const char *pHelp = "", int nFlags = FCVAR_NONE );
	~ConCommand() override;

	bool IsCommand() const override { return true; }
	void Dispatch( const CCommand &args ) const;

private:
	CommandCallbackFn_t m_fnCallback;
};
