#pragma once
// A console variable: a named setting held as text, read as int, float, bool or string.
// Optional bounds clamp numeric values. Change callbacks run after the value changed.
//
//   static ConVar r_particle_timescale( "r_particle_timescale", "1.0", FCVAR_NONE,
//                                       "Scales particle simulation time.", true, 0.0f, true, 10.0f );
//
// Set it from the main thread; the numeric reads are safe from any thread.

#include "core/console/concommandbase.h"

#include <atomic>
#include <functional>
#include <string>
#include <vector>

class ConVar : public ConCommandBase
{
public:
	// Gets the variable, its value before the change as text and as a float.
	using ChangeCallbackFn_t = std::function<void( ConVar *pVar, const char *pOldValue, float flOldValue )>;

	ConVar( const char *pName, const char *pDefault, int nFlags = FCVAR_NONE, const char *pHelp = "" );
	ConVar( const char *pName, const char *pDefault, int nFlags, const char *pHelp, bool bMin, float flMin, bool bMax, float flMax,
		ChangeCallbackFn_t fnCallback = nullptr );
	~ConVar() override;

	bool IsCommand() const override { return false; }

	const char *GetDefault() const { return m_pDefault; }
	// The text of the value. Valid until the next change; read it on the main thread.
	const char *GetString() const { return m_strValue.c_str(); }
	float GetFloat() const { return m_flValue.load( std::memory_order_relaxed ); }
	int GetInt() const { return m_nValue.load( std::memory_order_relaxed ); }
	bool GetBool() const { return GetInt() != 0 || GetFloat() != 0.0f; }

	// Text that reads as a number ("2", "0.5", "true", "false") sets the numbers too;
	// other text keeps the numbers at 0. A number outside the bounds is clamped and the
	// text becomes the clamped number.
	void SetValue( const char *pValue );
	void SetValue( int nValue );
	void SetValue( float flValue );
	void SetValue( double flValue ) { SetValue( float( flValue ) ); }
	void SetValue( bool bValue ) { SetValue( bValue ? 1 : 0 ); }
	void Revert() { SetValue( m_pDefault ); }

	bool GetMin( float *pMin ) const;
	bool GetMax( float *pMax ) const;

	// Answers an id for RemoveChangeCallback.
	int AddChangeCallback( ChangeCallbackFn_t fnCallback );
	void RemoveChangeCallback( int nId );

private:
	void SetText( std::string strValue );
	float Clamp( double flValue, bool *pClamped ) const;

	const char *m_pDefault;
	std::string m_strValue;
	std::atomic<float> m_flValue{ 0.0f };
	std::atomic<int> m_nValue{ 0 };
	bool m_bHasMin = false;
	bool m_bHasMax = false;
	float m_flMin = 0.0f;
	float m_flMax = 0.0f;
	bool m_bInCallback = false;
	int m_nNextCallbackId = 1;
	std::vector<std::pair<int, ChangeCallbackFn_t>> m_Callbacks;
};
