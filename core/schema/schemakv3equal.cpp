#include "core/kv3/keyvalues3.h"
#include "core/schema/schemavalueequal.h"

bool SchemaKV3ValuesEqual( const KeyValues3 &a, const KeyValues3 &b ) { return a.IsEqual( b ); }
