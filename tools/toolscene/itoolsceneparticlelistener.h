#pragma once
// Told when a tool scene particle system's effect is made anew (a restart, a new definition).

class CToolSceneParticleSystem;

class IToolSceneParticleListener
{
public:
	virtual void OnParticleSystemRestarted( CToolSceneParticleSystem *pSystem ) = 0;

protected:
	~IToolSceneParticleListener() = default;
};
