#pragma once
// The plain scene system: worlds and objects in memory, nothing drawn.

#include <memory>
#include <vector>

#include "core/host/iscenesystem.h"
#include "core/text/utlstring.h"

class CSceneObject final : public ISceneObject
{
public:
	explicit CSceneObject( const char *pName ) : m_strName( pName ) {}
	const char *GetName() const override { return m_strName.Get(); }
	void SetTransform( const Vector &vecOrigin, const Vector &vecAngles ) override
	{
		m_vecOrigin = vecOrigin;
		m_vecAngles = vecAngles;
	}
	const Vector &GetOrigin() const override { return m_vecOrigin; }
	const Vector &GetAngles() const override { return m_vecAngles; }
	void SetBounds( const Vector &vecMins, const Vector &vecMaxs ) override;
	const Vector &GetMins() const override { return m_vecMins; }
	const Vector &GetMaxs() const override { return m_vecMaxs; }

private:
	CUtlString m_strName;
	Vector m_vecOrigin;
	Vector m_vecAngles;
	Vector m_vecMins;
	Vector m_vecMaxs;
};

class CSceneWorld final : public ISceneWorld
{
public:
	explicit CSceneWorld( const char *pName ) : m_strName( pName ) {}
	const char *GetName() const override { return m_strName.Get(); }
	ISceneObject *CreateObject( const char *pName ) override;
	bool DestroyObject( ISceneObject *pObject ) override;
	int GetObjectCount() const override { return int( m_Objects.size() ); }
	ISceneObject *GetObject( int nIndex ) const override;
	void SetTime( float flTime ) override { m_flTime = flTime; }
	float GetTime() const override { return m_flTime; }

private:
	CUtlString m_strName;
	std::vector<std::unique_ptr<CSceneObject>> m_Objects;
	float m_flTime = 0.0f;
};

class CSceneSystem final : public ISceneSystem
{
public:
	ISceneWorld *CreateWorld( const char *pName ) override;
	bool DestroyWorld( ISceneWorld *pWorld ) override;
	int GetWorldCount() const override { return int( m_Worlds.size() ); }

private:
	std::vector<std::unique_ptr<CSceneWorld>> m_Worlds;
};
