#pragma once
// The half of a tool that the host talks to: connection to the host's services, start,
// frames, open requests, quit and shutdown.

#include <vector>

#include "core/host/interfaceregistry.h"
#include "core/text/utlstring.h"

class CUtlString;

// The host's named factory (Host_CreateInterface): the object of that versioned name, or
// null with IFACE_FAILED.
using ToolCreateInterfaceFn_t = CreateInterfaceFn_t;

// Version name under which the host finds a tool.
#define TOOLSYSTEM2_INTERFACE_VERSION "ToolSystem2_001"

// What the host asks a tool to open.
enum ToolOpenRequestKind_t : int
{
	TOOL_OPEN_REQUEST_SHOW = 0,
	TOOL_OPEN_REQUEST_ASSETS = 1,
	TOOL_OPEN_REQUEST_FILES = 2,
	TOOL_OPEN_REQUEST_ASSET_WITH_EXTRA = 3,
};

struct ToolOpenRequest_t
{
	int m_nKind = TOOL_OPEN_REQUEST_SHOW;
	std::vector<CUtlString> m_Names;
	const void *m_pExtra = nullptr;
};

class CBaseToolSystem2
{
public:
	CBaseToolSystem2() = default;
	virtual ~CBaseToolSystem2() = default;
	CBaseToolSystem2( const CBaseToolSystem2 & ) = delete;
	CBaseToolSystem2 &operator=( const CBaseToolSystem2 & ) = delete;

	// Asks the factory for what the tool uses, and counts up; true when the services the
	// framework can't do without answered.
	virtual bool Connect( ToolCreateInterfaceFn_t fnFactory );
	virtual void Disconnect();
	virtual void *QueryInterface( const char *pName );
	virtual bool InitTool() { return true; }
	virtual void ShutdownTool() = 0;
	// Interface names that must answer before the tool starts; null ends the list.
	virtual const char *const *GetNeededInterfaces() const;
	// Asks the factory for each needed interface: true when all answer, else false with
	// the message that names the first one missing. The host refuses to start on false.
	bool CheckNeededInterfaces( ToolCreateInterfaceFn_t fnFactory, CUtlString *pError ) const;
	virtual bool StartTool( int nToolId ) = 0;
	virtual void OnOpenRequest( const ToolOpenRequest_t &request ) = 0;
	virtual void Frame() = 0;
	// True when the tool refuses to let the host quit.
	virtual bool CloseRefused() = 0;

	// The factory the tool was connected with, for its own look-ups; null before Connect.
	ToolCreateInterfaceFn_t GetFactory() const { return m_fnFactory; }
	// Services the framework itself can't do without: Connect answers false without them.
	static const std::vector<const char *> &GetFrameworkInterfaces();
	void *FindInterface( const char *pName ) const;
	int GetToolId() const { return m_nToolId; }
	int GetConnectionCount() const { return m_nConnectionCount; }

protected:
	std::vector<CUtlString> m_ConnectedInterfaces;
	int m_nConnectionCount = 0;
	int m_nToolId = -1;
	ToolCreateInterfaceFn_t m_fnFactory = nullptr;
};
