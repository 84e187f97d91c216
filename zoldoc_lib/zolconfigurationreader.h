#pragma once
// Reads a control point configuration of a definition file into its complete form: every
// member present, numbers of the right kind, enumerations by name. Reads are lenient: an
// enumeration takes its name or a number, an integer field takes a bool, a float or a
// numeric string, and every conversion that loses information is reported to the context.

class CKV3TransferLoadContext;
class KeyValues3;

// pOut becomes the configuration table, with defaults where pIn lacks a member or its
// member can't be read.
void ReadControlPointConfiguration( const KeyValues3 *pIn, KeyValues3 *pOut, CKV3TransferLoadContext *pContext );

// The name of a ParticleAttachment_t value ("PATTACH_POINT"), or null when it has none.
const char *GetParticleAttachmentName( int nValue );
