#include "core/host/resourcesystem.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{
class CRecordingListener final : public IResourceListener
{
public:
	void OnResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) override
	{
		for ( const ResourceChange_t &change : changes )
			m_Names.push_back( std::string( ResourceTypeName( change.m_nType ).Get() ) + ":" + change.m_strName.Get() );
		if ( m_pRemoveOnCall )
			m_pSystem->RemoveListener( m_pRemoveOnCall );
	}
	std::vector<std::string> m_Names;
	CResourceSystem *m_pSystem = nullptr;
	IResourceListener *m_pRemoveOnCall = nullptr;
};

class CNumberData final : public CResourceData
{
public:
	explicit CNumberData( int nValue ) : m_nValue( nValue ) {}
	int m_nValue;
};
} // namespace

TEST( ResourceSystem, NamesMatchIgnoringCaseAndSlashAndKeepTheirType )
{
	CResourceSystem resources;
	CResourceBinding *pBinding = resources.FindOrCreateBinding( "particles/Samples/fire.tfxs" );
	ASSERT_NE( pBinding, nullptr );
	EXPECT_EQ( resources.FindOrCreateBinding( "PARTICLES\\samples\\FIRE.TFXS" ), pBinding );
	EXPECT_EQ( resources.FindBinding( "/particles//samples/fire.tfxs" ), pBinding );
	EXPECT_STREQ( pBinding->GetName(), "particles/Samples/fire.tfxs" );
	EXPECT_EQ( pBinding->GetType(), RESOURCE_TYPE_PARTICLE_SYSTEM );
	EXPECT_EQ( resources.FindOrCreateBinding( "models/a.tmsh" )->GetType(), RESOURCE_TYPE_MESH );
	EXPECT_EQ( resources.FindBinding( "particles/other.tfxs" ), nullptr );
	EXPECT_EQ( resources.FindOrCreateBinding( "" ), nullptr );
	EXPECT_EQ( resources.GetBindingCount(), 2 );
}

TEST( ResourceSystem, StrongHandlesCountReferences )
{
	CResourceSystem resources;
	CResourceHandle first = resources.GetResource( "particles/a.tfxs" );
	EXPECT_EQ( first->GetRefCount(), 1 );
	{
		CResourceHandle copy = first;
		CResourceHandle moved = std::move( copy );
		EXPECT_FALSE( copy );
		EXPECT_EQ( first->GetRefCount(), 2 );
	}
	EXPECT_EQ( first->GetRefCount(), 1 );
	CResourceBinding *pBinding = first.Get();
	first.Reset();
	EXPECT_EQ( pBinding->GetRefCount(), 0 );
}

TEST( ResourceSystem, HandleReferenceCountsStayExactAcrossThreads )
{
	CResourceSystem resources;
	CResourceHandle held = resources.GetResource( "particles/shared.tfxs" );
	constexpr int THREADS = 8;
	constexpr int ROUNDS = 20000;
	std::vector<std::thread> threads;
	std::vector<CResourceHandle> kept( THREADS );
	for ( int t = 0; t < THREADS; ++t )
	{
		threads.emplace_back( [&resources, &kept, t] {
			for ( int i = 0; i < ROUNDS; ++i )
			{
				CResourceHandle handle = resources.GetResource( ( i & 1 ) ? "particles/shared.tfxs" : "PARTICLES\\SHARED.TFXS" );
				CResourceHandle copy = handle;
			}
			kept[ t ] = resources.GetResource( "particles/shared.tfxs" );
		} );
	}
	for ( std::thread &thread : threads )
		thread.join();
	EXPECT_EQ( held->GetRefCount(), 1 + THREADS );
	kept.clear();
	EXPECT_EQ( held->GetRefCount(), 1 );
	EXPECT_EQ( resources.GetBindingCount(), 1 );
}

TEST( ResourceSystem, ReplacingDataTellsListenersAndKeepsOldDataForItsHolders )
{
	CResourceSystem resources;
	CRecordingListener listener;
	resources.AddListener( &listener );
	CResourceHandle handle = resources.GetResource( "particles/a.tfxs" );
	EXPECT_FALSE( handle->IsLoaded() );

	resources.ReplaceResourceData( handle.Get(), std::make_shared<CNumberData>( 1 ) );
	std::shared_ptr<const CNumberData> pOld = handle->GetDataAs<CNumberData>();
	uint32_t nVersion = handle->GetDataVersion();
	resources.ReplaceResourceData( handle.Get(), std::make_shared<CNumberData>( 2 ) );

	EXPECT_EQ( pOld->m_nValue, 1 );
	EXPECT_EQ( handle->GetDataAs<CNumberData>()->m_nValue, 2 );
	EXPECT_GT( handle->GetDataVersion(), nVersion );
	EXPECT_EQ( listener.m_Names, ( std::vector<std::string>{ "tfxs:particles/a.tfxs", "tfxs:particles/a.tfxs" } ) );

	resources.RemoveListener( &listener );
	resources.ReplaceResourceData( handle.Get(), std::make_shared<CNumberData>( 3 ) );
	EXPECT_EQ( listener.m_Names.size(), 2u );
}

TEST( ResourceSystem, BatchesReachListenersWholeAndAListenerMayRemoveAnother )
{
	CResourceSystem resources;
	CRecordingListener first, second;
	first.m_pSystem = &resources;
	first.m_pRemoveOnCall = &second;
	resources.AddListener( &first );
	resources.AddListener( &second );
	resources.AddListener( &first ); // once only

	CUtlVector<ResourceChange_t> changes;
	changes.AddToTail( ResourceChange_t{ RESOURCE_TYPE_PARTICLE_SYSTEM, CUtlString( "particles/a.tfxs" ) } );
	changes.AddToTail( ResourceChange_t{ RESOURCE_TYPE_IMAGE, CUtlString( "images/b.timg" ) } );
	resources.NotifyResourcesReloaded( changes );

	EXPECT_EQ( first.m_Names, ( std::vector<std::string>{ "tfxs:particles/a.tfxs", "timg:images/b.timg" } ) );
	EXPECT_TRUE( second.m_Names.empty() );
}

TEST( ResourceSystem, UnloadDropsOnlyUnreferencedData )
{
	CResourceSystem resources;
	CResourceHandle kept = resources.GetResource( "particles/kept.tfxs" );
	CResourceBinding *pDropped = resources.FindOrCreateBinding( "particles/dropped.tfxs" );
	kept->SetData( std::make_shared<CNumberData>( 1 ) );
	pDropped->SetData( std::make_shared<CNumberData>( 2 ) );

	EXPECT_EQ( resources.UnloadUnreferenced(), 1 );
	EXPECT_TRUE( kept->IsLoaded() );
	EXPECT_FALSE( pDropped->IsLoaded() );
}
