#pragma once
// The host's scene system: worlds that hold scene objects, each with a transform and
// bounds. The preview makes one world per view and places its objects in it.

#include "core/mathlib/vector.h"

constexpr const char *SCENESYSTEM_INTERFACE_VERSION = "SceneSystem_002";

class ISceneObject
{
public:
	virtual const char *GetName() const = 0;
	virtual void SetTransform( const Vector &vecOrigin, const Vector &vecAngles ) = 0;
	virtual const Vector &GetOrigin() const = 0;
	virtual const Vector &GetAngles() const = 0;
	// Bounds in the object's own space.
	virtual void SetBounds( const Vector &vecMins, const Vector &vecMaxs ) = 0;
	virtual const Vector &GetMins() const = 0;
	virtual const Vector &GetMaxs() const = 0;

protected:
	~ISceneObject() = default;
};

class ISceneWorld
{
public:
	virtual const char *GetName() const = 0;
	// The world owns its objects; they live until destroyed or until the world goes.
	virtual ISceneObject *CreateObject( const char *pName ) = 0;
	// False for an object of another world (or one already destroyed).
	virtual bool DestroyObject( ISceneObject *pObject ) = 0;
	virtual int GetObjectCount() const = 0;
	virtual ISceneObject *GetObject( int nIndex ) const = 0;
	// The world's clock: what its objects animate against.
	virtual void SetTime( float flTime ) = 0;
	virtual float GetTime() const = 0;

protected:
	~ISceneWorld() = default;
};

class ISceneSystem
{
public:
	virtual ISceneWorld *CreateWorld( const char *pName ) = 0;
	// Destroys the world and every object in it; false for an unknown world.
	virtual bool DestroyWorld( ISceneWorld *pWorld ) = 0;
	virtual int GetWorldCount() const = 0;

protected:
	~ISceneSystem() = default;
};
