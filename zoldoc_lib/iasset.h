#pragma once
// The host's record of one asset file. The document only reads the path; the asset
// system and the rest of the record belong to the host services.

class IAsset
{
public:
	// The content path of the asset's file.
	virtual const char *GetPath() const = 0;

protected:
	~IAsset() = default;
};
