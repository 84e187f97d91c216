#pragma once
// zol sim --dump: one JSON object per line for each printed step and each collection of
// the tree, with every living particle, so that checks outside the program can follow
// colours, fades and each child's behaviour.
//
// {"frame":60,"t":1,"path":"0/1","system":"particles/smoke.tfxs","time":1,"started":true,
//  "finished":false,"count":2,"particles":[{"id":7,"created":0.5,"life":2,"pos":[x,y,z],
//  "vel":[x,y,z],"radius":5,"alpha":1,"color":[r,g,b]},...]}
//
// "path" is the collection's place in the child tree: "0" the system itself, "0/1" its
// second child. Numbers that aren't finite are written as null.

#include <cstdio>

#include "core/text/utlstring.h"

class IParticleCollection;

class CSimDumpWriter
{
public:
	~CSimDumpWriter();
	bool Open( const char *pPath, CUtlString *pError );
	bool IsOpen() const { return m_pFile != nullptr; }
	bool WriteStep( int nFrame, double flSeconds, const IParticleCollection &root, CUtlString *pError );
	bool Close( CUtlString *pError );

private:
	void WriteCollection( int nFrame, double flSeconds, const IParticleCollection &collection, const CUtlString &path );

	FILE *m_pFile = nullptr;
	CUtlString m_Path;
};
