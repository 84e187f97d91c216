#pragma once
// Whole-object transfers and the registration that lets polymorphic pointers find the
// load and save of their real class.

#include "core/schema/schemanestedclasses.h"
#include "core/schema/schematypeof.h"
#include "core/text/utlstring.h"
#include "core/kv3transfer/kv3transfertypes.h"

// Loads an object in place from a KV3 value: members missing from the value take their
// defaults. pError receives all reports, one per line. True when nothing was reported.
template <typename T>
bool LoadKV3ObjectInPlace( T *pObject, const KeyValues3 *pKV, CUtlString *pError, CKV3TransferLoadContext *pContext = nullptr )
{
	CKV3TransferLoadContext localContext;
	CKV3TransferLoadContext *pUse = pContext ? pContext : &localContext;
	KV3Transfer_t<T>::Load( *pObject, pKV, pUse );
	pUse->OnTransferEnd();
	if ( pError )
		pError->Set( pUse->GetErrorText() );
	return pUse->HasSucceeded();
}

// Saves an object into pKV (replacing what it held). With a context whose delta flag is
// set, members equal to their class default are left out.
template <typename T>
bool SaveKV3Object( const T &object, KeyValues3 *pKV, CUtlString *pError, CKV3TransferSaveContext *pContext = nullptr )
{
	CKV3TransferSaveContext localContext;
	CKV3TransferSaveContext *pUse = pContext ? pContext : &localContext;
	KV3Transfer_t<T>::Save( object, pKV, pUse );
	pUse->OnTransferEnd();
	if ( pError )
		pError->Set( pUse->GetErrorText() );
	return pUse->HasSucceeded();
}

namespace KV3TransferRegistration
{
template <typename C> void LoadErased( void *pObject, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	KV3Transfer_t<C>::Load( *static_cast<C *>( pObject ), pValue, pContext );
}
template <typename C> void SaveErased( const void *pObject, KeyValues3 *pTable, CKV3TransferSaveContext *pContext )
{
	KV3Transfer_t<C>::SaveMembers( *static_cast<const C *>( pObject ), pTable, pContext );
}
template <typename C> void WriteDefaults( KeyValues3 *pTable )
{
	CKV3TransferSaveContext context;
	KV3Transfer_t<C>::Save( KV3Transfer_t<C>::DefaultInstance(), pTable, &context );
}
} // namespace KV3TransferRegistration

// Registers the class (and its bases, and the declared classes its fields hold) in the
// scope and installs their KV3 load, save and defaults table. A polymorphic pointer can
// only load the classes registered this way.
template <typename C>
CSchemaClassInfo *RegisterKV3TransferClass( CSchemaSystemTypeScope *pScope )
{
	CSchemaClassInfo *pClass = RegisterSchemaClass<C>( pScope );
	SchemaClassBinding_t &binding = pClass->GetBindingForModify();
	// A field may lead back to the class (a tree of itself): bound once, the walk ends.
	if ( binding.m_pfnLoadKV3 == &KV3TransferRegistration::LoadErased<C> )
		return pClass;
	binding.m_pfnLoadKV3 = &KV3TransferRegistration::LoadErased<C>;
	binding.m_pfnSaveKV3 = &KV3TransferRegistration::SaveErased<C>;
	if constexpr ( std::is_default_constructible_v<C> && !std::is_abstract_v<C> )
		binding.m_pfnWriteDefaults = &KV3TransferRegistration::WriteDefaults<C>;
	if constexpr ( !std::is_void_v<typename C::SchemaBaseClass_t> )
		RegisterKV3TransferClass<typename C::SchemaBaseClass_t>( pScope );
	SchemaVisitNestedClasses<C>( [ pScope ]<typename N>() { RegisterKV3TransferClass<N>( pScope ); } );
	return pClass;
}
