#pragma once
// Services a caller hands to a transfer under their names; generated code finds them by
// the hash of the name. Only the resource interfaces have behaviour here; the others are
// named so that every subsystem that needs them finds them the same way.

#include "core/schema/schemaresourcetypes.h"

class KeyValues3;
class CKV3TransferLoadContext;
class CKV3TransferSaveContext;

class IKV3TransferInterface_ResourceLoad
{
public:
	static constexpr const char *s_pszInterfaceName = "IKV3TransferInterface_ResourceLoad";
	virtual ~IKV3TransferInterface_ResourceLoad() = default;
	// Turns the reference text in pValue into a handle of the kind pszResourceType names:
	// 1 when the handle is set (or cleared for an empty text), 0 when the text is no name.
	virtual int LoadResource( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, const char *pszResourceType, ResourceHandleBase_t *pHandle ) = 0;
};

class IKV3TransferInterface_ResourceSave
{
public:
	static constexpr const char *s_pszInterfaceName = "IKV3TransferInterface_ResourceSave";
	virtual ~IKV3TransferInterface_ResourceSave() = default;
	// Writes the reference text of the handle into pValue; 1 on success.
	virtual int SaveResource( CKV3TransferSaveContext *pContext, const ResourceHandleBase_t &handle, const char *pszResourceType, KeyValues3 *pValue ) = 0;
};

// Optional interfaces of other value kinds, found under these names.
inline constexpr const char *KV3_TRANSFER_GAMETIME_LOAD = "IKV3TransferInterface_GameTime_Load";
inline constexpr const char *KV3_TRANSFER_GAMETIME_SAVE = "IKV3TransferInterface_GameTime_Save";
inline constexpr const char *KV3_TRANSFER_EHANDLE_LOAD = "IKV3TransferInterface_EHandle_Load";
inline constexpr const char *KV3_TRANSFER_EHANDLE_SAVE = "IKV3TransferInterface_EHandle_Save";
inline constexpr const char *KV3_TRANSFER_WORLDSPACE_LOAD = "IKV3TransferInterface_Worldspace_Load";
inline constexpr const char *KV3_TRANSFER_WORLDSPACE_SAVE = "IKV3TransferInterface_Worldspace_Save";
inline constexpr const char *KV3_TRANSFER_PULSE_INSTANCE_SAVE = "IPulseInstanceSaveAPI";
inline constexpr const char *KV3_TRANSFER_PULSE_EDITOR_LOAD = "IPulseEditorLoadCallbacks";
