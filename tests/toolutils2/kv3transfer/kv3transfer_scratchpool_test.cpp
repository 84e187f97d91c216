#include <gtest/gtest.h>

#include "core/containers/utlscratchmemorypool.h"
#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/text/utlstring.h"

// Keys own heap text, so a key that is never destroyed leaks and ASan sees it.
struct TestScratchKey_t
{
	SCHEMA_CLASS( TestScratchKey_t )
	SCHEMA_FIELD( CUtlString, m_Name, "unnamed key of some length" )
	SCHEMA_FIELD( float, m_flValue, 0.0f )
};

class CTestScratchTrack
{
	SCHEMA_CLASS( CTestScratchTrack )
	SCHEMA_FIELD( CUtlVector<TestScratchKey_t>, m_Keys, {} )
	SCHEMA_FIELD( CUtlVector<float>, m_Samples, {} )
};

namespace
{
class KV3TransferScratchPool : public ::testing::Test
{
protected:
	void SetUp() override
	{
		RegisterKV3TransferClass<CTestScratchTrack>( SchemaSystem()->FindOrCreateTypeScopeForModule( "kv3transfer_scratch_tests" ) );
		m_Source.m_Keys.SetCount( 2 );
		m_Source.m_Keys[ 0 ].m_Name = "the first key, with a name too long for any inline text";
		m_Source.m_Keys[ 0 ].m_flValue = 0.25f;
		m_Source.m_Keys[ 1 ].m_Name = "the second key, with a name too long for any inline text";
		m_Source.m_Keys[ 1 ].m_flValue = 4.0f;
		for ( float flSample : { 1.0f, 2.0f, 3.0f } )
			m_Source.m_Samples.AddToTail( flSample );
		ASSERT_TRUE( SaveKV3Object( m_Source, &m_KV, nullptr, &m_SaveContext ) );
	}

	CTestScratchTrack m_Source;
	CKV3TransferSaveContext m_SaveContext;
	KeyValues3 m_KV;
};
} // namespace

TEST_F( KV3TransferScratchPool, LoadWithAPoolTakesArrayStorageFromThePool )
{
	CUtlScratchMemoryPool pool;
	{
		CKV3TransferLoadContext context;
		context.SetScratchMemoryPool( &pool );
		CTestScratchTrack loaded;
		CUtlString error;
		ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &m_KV, &error, &context ) ) << error.Get();
		EXPECT_EQ( pool.GetBytesUsed(), 2 * sizeof( TestScratchKey_t ) + 3 * sizeof( float ) );
		EXPECT_TRUE( loaded.m_Keys.IsExternallyAllocated() );
		EXPECT_TRUE( loaded.m_Samples.IsExternallyAllocated() );

		ASSERT_EQ( loaded.m_Keys.Count(), 2 );
		EXPECT_STREQ( loaded.m_Keys[ 1 ].m_Name.Get(), "the second key, with a name too long for any inline text" );
		EXPECT_EQ( loaded.m_Keys[ 0 ].m_flValue, 0.25f );
		ASSERT_EQ( loaded.m_Samples.Count(), 3 );
		EXPECT_EQ( loaded.m_Samples[ 2 ], 3.0f );
		// The object is destroyed here, before the pool: its keys' texts are freed and the
		// pool's memory is not (ASan reports either mistake).
	}
}

TEST_F( KV3TransferScratchPool, SavedScratchCountSizesAPoolThatHoldsTheLoadInOneBlock )
{
	CUtlScratchMemoryPool pool( m_SaveContext.GetScratchBytes() );
	CKV3TransferLoadContext context;
	context.SetScratchMemoryPool( &pool );
	CTestScratchTrack loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &m_KV, nullptr, &context ) );
	EXPECT_EQ( pool.GetBlockCount(), 1 );
}

TEST_F( KV3TransferScratchPool, PooledArraysStillGrowAndReloadCorrectly )
{
	CUtlScratchMemoryPool pool;
	CKV3TransferLoadContext context;
	context.SetScratchMemoryPool( &pool );
	CTestScratchTrack loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &m_KV, nullptr, &context ) );

	// An edit after the load moves the keys to the heap with their values.
	loaded.m_Keys.AddToTail();
	EXPECT_FALSE( loaded.m_Keys.IsExternallyAllocated() );
	EXPECT_STREQ( loaded.m_Keys[ 0 ].m_Name.Get(), "the first key, with a name too long for any inline text" );

	// Loading again over the edited object drops the heap block and uses the pool again.
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &m_KV, nullptr, &context ) );
	EXPECT_TRUE( loaded.m_Keys.IsExternallyAllocated() );
	EXPECT_EQ( loaded.m_Keys.Count(), 2 );
	EXPECT_EQ( loaded.m_Keys[ 1 ].m_flValue, 4.0f );
}

TEST_F( KV3TransferScratchPool, LoadWithoutAPoolKeepsArraysOnTheHeap )
{
	CTestScratchTrack loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &m_KV, nullptr ) );
	EXPECT_FALSE( loaded.m_Keys.IsExternallyAllocated() );
	EXPECT_EQ( loaded.m_Keys.Count(), 2 );
	CKV3TransferLoadContext context;
	EXPECT_EQ( context.AllocScratch( 4, 4 ), nullptr ) << "no pool, no scratch memory";
}
