#pragma once
// A bind target for the engine tests: every command records each stage it runs as
// "<command>.<stage>", so a test reads back exactly what a gesture did.

#include <string>
#include <vector>

#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"

class CInputBindTestTarget final : public IBindTarget
{
public:
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	uint32_t GetActiveModifiers() override { return m_nModifiers; }
	void OnInputFrame() override { ++m_nInputFrames; }

	// Calls of one command, in order.
	std::vector<std::string> CallsOf( const char *pCommand ) const;

	std::vector<std::string> m_Calls;
	uint32_t m_nModifiers = 0;
	int m_nInputFrames = 0;
};

// Binding file text for the context "InputBindTest", with one binding per line pair.
std::string InputBindTestFile( const std::vector<std::pair<std::string, std::string>> &inputAndCommand, const std::string &macros = "" );
