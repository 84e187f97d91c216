#pragma once
// A preview that writes down every call the control point state makes on it, one line
// each, in order; it knows one model of the scene by name.

#include <cstdio>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "zoldoc_lib/izolpreviewtarget.h"

inline std::string VectorText( const Vector &v )
{
	char sz[ 64 ];
	snprintf( sz, sizeof( sz ), "%g %g %g", v.x, v.y, v.z );
	return sz;
}

class CRecordingPreview final : public IZolPreviewTarget
{
public:
	bool HasRunningCollection() const override { return m_bRunning; }
	void SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle & ) override
	{
		m_Calls.push_back( "collection " + std::to_string( nPoint ) + " at " + VectorText( vPosition ) );
	}
	void SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value ) override
	{
		m_Calls.push_back( std::string( "value " ) + key.m_pName + " " + type.ToString().Get() + " " + std::to_string( value.GetFloat() ) );
	}
	void ClearControlPointBinding( int nPoint ) override { m_Calls.push_back( "unbind " + std::to_string( nPoint ) ); }
	void SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle & ) override
	{
		m_Calls.push_back( "node " + std::to_string( nPoint ) + " at " + VectorText( vPosition ) );
	}
	bool BindControlPointToModel( int nPoint, const char *pModelName, bool, int nAttachType, const char *pAttachmentName, const Vector &vOffset, const QAngle & ) override
	{
		if ( m_SceneModel != pModelName )
			return false;
		m_Calls.push_back( "bind " + std::to_string( nPoint ) + " to " + pModelName + ":" + pAttachmentName + " type " + std::to_string( nAttachType ) + " offset " +
						   VectorText( vOffset ) );
		return true;
	}

	std::string Joined() const
	{
		std::string text;
		for ( const std::string &call : m_Calls )
			text += call + "\n";
		return text;
	}

	bool m_bRunning = true;
	std::string m_SceneModel;
	std::vector<std::string> m_Calls;
};

