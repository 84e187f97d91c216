#pragma once
// What the asset maintenance commands (upgrade, refs, convert-cp) share: the host's
// services started over the roots, so that children are found as the editor finds them
// (inside the content root, through its asset index), files named as the user typed them
// relative to the working folder, and the report printed one "FILE: message" line each.

#include <cstdio>

#include "core/containers/utlvector.h"
#include "core/host/hostservices.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/zolbatchdocuments.h"

class CZolFileReport;
class IAsset;

class CZolCliMaintenanceHost
{
public:
	CZolCliMaintenanceHost();
	~CZolCliMaintenanceHost();

	// Starts the services over --content and --game, else the roots found from the first
	// file (or the working folder); false with the message printed when a root is missing.
	bool Start( const char *pFirstFile );
	const CUtlString &GetContentRoot() const { return m_ContentRoot; }

	// The particle system of a file the user named; null with an error line in the report
	// for a file that doesn't exist or lies outside the content root.
	IAsset *FindFileAsset( const char *pFile, CZolFileReport *pReport );
	// Every particle system of the content root, in name order.
	void GetAllAssets( CUtlVector<IAsset *> *pAssets );
	// Starts over the roots of the files (or the working folder for --all) and gives the
	// systems to work on: all of them, or those of the files, each file that isn't one an
	// error line. False when no root could be found (the message is printed).
	bool StartFor( const CUtlVector<const char *> &files, bool bAll, CUtlVector<IAsset *> *pAssets, CZolFileReport *pReport );

	// The file's path relative to the working folder when it lies below it, else absolute,
	// with forward slashes.
	CUtlString GetDisplayName( IAsset *pAsset ) const;
	CZolBatchDocuments &GetDocuments() { return m_Documents; }

private:
	CHostServices m_Services;
	CZolBatchDocuments m_Documents;
	CUtlString m_ContentRoot;
};

// The report's lines, sorted by file, to pOut.
void PrintMaintenanceReport( const CZolFileReport &report, FILE *pOut );
// Whether the argument is a file name rather than an option; an empty one is neither.
bool IsMaintenanceFileArgument( const char *pArg );
// Why an argument that is neither an option of the command nor a file is refused.
CUtlString DescribeBadMaintenanceArgument( const char *pArg );
