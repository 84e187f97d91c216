#pragma once
// One thread of control inside a graph instance: a position, a register file, a stack of
// saved frames, tags and observers. Cursors run cooperatively on the caller's thread
// until they return, fail, or yield at a cell; a yielded cursor is owned by its instance
// until something resumes or cancels it.
//
// Run is the only way code executes. After every Run the caller applies one rule: a
// cursor that has not yielded and is not running is finished and is destroyed
// (CBasePulseGraphInstance::EndCursorRun).

#include <cstdint>
#include <memory>
#include <vector>

#include "pulse_runtime_lib/exec/pulsecursortypes.h"
#include "pulse_runtime_lib/exec/pulsehostinterfaces.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

class KeyValues3;
class IPulseReloadListener;
struct CPulse_Chunk;
struct PulseOp_t;
struct PulseOpData_t;
struct PulseRegisterMap_t;
struct PulseInvokePlan_t;
struct PulseCallPlan_t;

// A register file: bytes at 16-byte alignment, held in place while small.
class CPulseRegisterBlock
{
public:
	CPulseRegisterBlock() = default;
	CPulseRegisterBlock( const CPulseRegisterBlock & ) = delete;
	CPulseRegisterBlock &operator=( const CPulseRegisterBlock & ) = delete;
	~CPulseRegisterBlock();

	unsigned char *Data() { return m_pData; }
	const unsigned char *Data() const { return m_pData; }
	// Room for nBytes; the old content is lost.
	void SetSize( size_t nBytes );

private:
	static constexpr size_t INLINE_BYTES = 192;
	alignas( 16 ) unsigned char m_Inline[ INLINE_BYTES ];
	unsigned char *m_pData = m_Inline;
	size_t m_nCapacity = INLINE_BYTES;
};

// One bit per register; a set bit means the value is dead. The bits of up to 256
// registers live in place, so starting a cursor allocates nothing for them.
class CPulseDetachBits
{
public:
	// All clear, for nRegisters registers.
	void Reset( size_t nRegisters );
	uint64_t *Words() { return m_nWords > INLINE_WORDS ? m_Heap.data() : m_Inline; }
	const uint64_t *Words() const { return m_nWords > INLINE_WORDS ? m_Heap.data() : m_Inline; }

private:
	static constexpr size_t INLINE_WORDS = 4;
	uint64_t m_Inline[ INLINE_WORDS ] = {};
	std::vector<uint64_t> m_Heap;
	size_t m_nWords = 0;
};

// One activation of a chunk.
struct PulseFrame_t
{
	int m_nChunk = -1;
	int m_nInstruction = 0;
	const CPulse_Chunk *m_pChunk = nullptr;
	CPulseRegisterBlock m_Registers;
	CPulseDetachBits m_DetachBits;
	CPulseVariant m_ReturnSlot;

	void *Register( int nRegister );
	void SetDetached( int nRegister, bool bDetached );
	bool IsDetached( int nRegister ) const;
};

struct PulseCursorTag_t
{
	PulseSymbol_t m_Name;
	CPulseVariant m_Value;
	int m_nStackDepthWhenAdded = 0;
	bool m_bChildCursorsShouldInherit = false;
	bool m_bRemoveWhenOutOfScope = false;
};

class CPulseExecCursor final : public IPulseExecLog, public IPulseHost_Unknown, public IPulseHost_YieldingCursor
{
public:
	enum State_t
	{
		STATE_IDLE = 0, // idle or running
		STATE_YIELDED = 1,
		STATE_TERMINATED = 2,
	};

	// The run limit: a run may execute this many instructions; the next one stops the cursor.
	static constexpr int MAX_INSTRUCTIONS_PER_RUN = 10000;

	// Made by CBasePulseGraphInstance::CreateCursor.
	CPulseExecCursor( CBasePulseGraphInstance *pInstance, PulseCursorID_t nId, PulseCursorID_t nParentId );
	~CPulseExecCursor();
	CPulseExecCursor( const CPulseExecCursor & ) = delete;
	CPulseExecCursor &operator=( const CPulseExecCursor & ) = delete;

	// What a run starts with: arguments placed by a register map's outputs, and a place
	// for the value a RETURN_VALUE leaves with an empty stack.
	struct RunStart_t
	{
		const PulseArgPack *m_pArgs = nullptr;
		CPulseVariant *m_pReturnValue = nullptr;
		const PulseRegisterMap_t *m_pRegisterMap = nullptr;
	};
	void Run( int nChunk, int nInstruction, const RunStart_t *pStart = nullptr );

	State_t GetState() const { return m_eState; }
	bool IsRunning() const { return ( m_nFlags & FLAG_RUNNING ) != 0; }
	bool IsYielded() const { return m_eState == STATE_YIELDED; }
	PulseCursorID_t GetId() const { return m_nId; }
	PulseCursorID_t GetParentId() const { return m_nParentId; }
	// The handle that names this cursor while it is yielded (its current token).
	PulseCursorHandle GetHandle() const;
	// The result it completed with; Succeeded until it completes.
	PulseCursorExecResult_t GetFinalResult() const;
	bool HasCompleted() const;
	int GetStackDepth() const { return int( m_Stack.size() ); }
	const PulseFrame_t &GetActiveFrame() const { return m_Active; }
	const std::vector<PulseCursorTag_t> &GetTags() const;
	// Ids and results of spawned children that ended at once.
	const std::vector<std::pair<PulseCursorID_t, PulseCursorExecResult_t>> &GetResultSet() const;

	// The yield, while yielded.
	const CPulseCell_Base *GetYieldCell() const;
	void *GetYieldState() const;
	PulseCursorCancelPriority_t GetRequestedCancelPriority() const;
	bool IsResumePending() const;

	// IPulseHost_Cursor, IPulseHost_YieldingCursor.
	CBasePulseGraphInstance *GetGraphInstance() const override { return m_pInstance; }
	CPulseExecCursor *GetCursor() override { return this; }
	void ReturnFromChunk() override;
	void Terminate( PulseCursorExecResult_t eResult ) override;
	void AddTag( PulseSymbol_t name, const CPulseVariant &value, bool bChildCursorsShouldInherit, bool bRemoveWhenOutOfScope ) override;
	bool HasTag( PulseSymbol_t name, const CPulseVariant &value ) const override;
	void RemoveTag( PulseSymbol_t name, const CPulseVariant &value ) override;
	void ContinueAt( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs ) override;
	PulseCursorHandle SpawnChildCursor( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs, PulseCursorID_t *pObserverSlot ) override;
	void Yield( const CPulseCell_Base *pCell ) override;
	void CompleteYield( PulseCursorExecResult_t eResult, const CPulse_OutflowConnection *pResumePoint, const PulseArgPack *pArgs ) override;

	// Leaves the yield and runs on from the resume point; unconnected, the cursor
	// returns from its chunk and goes on after the yielding instruction.
	void Resume( const CPulse_OutflowConnection *pResumePoint );
	// A cursor this one observes finished: passed to the yielding cell.
	void NotifyObserved( PulseCursorID_t nSubject, PulseCursorExecResult_t eResult );
	// A scheduled wake fired: passed to the yielding cell.
	void Wake();
	double GetNow() const;
	// Asks a yielded cursor to stop, at a priority; see the cancel rules in the .cpp.
	void RequestCancel( PulseCursorCancelPriority_t ePriority );
	// Adds an observer (a cursor told of this one's completion), once.
	void RegisterObserver( const PulseCursorHandle &observer );

	// IPulseExecLog.
	void Warning( const char *pFormat, ... ) override __attribute__( ( format( printf, 2, 3 ) ) );
	void Error( const char *pFormat, ... ) override __attribute__( ( format( printf, 2, 3 ) ) );
	// The flow node of the instruction being run, for reports; -1 when unknown.
	PulseDocNodeID_t GetCurrentFlowNode() const;

	// A yielded cursor as KV3 (for reloads), and back into a fresh cursor of a possibly
	// newer definition. Load answers false, with the reason reported, when the cursor
	// can't be restored.
	bool Save( KeyValues3 *pKV ) const;
	bool Load( const KeyValues3 *pKV, IPulseReloadListener *pListener );

private:
	enum Flags_t : uint32_t
	{
		FLAG_RUNNING = 1 << 0,
		FLAG_STEP_ON = 1 << 1,        // advance after this instruction
		FLAG_IN_INVOKE = 1 << 2,
		FLAG_MOVED_IN_INVOKE = 1 << 3, // control moved during the invoke
		FLAG_TRACE = 1 << 4,
		FLAG_HOST_TABLE = 1 << 5,      // m_HostTable is filled
		FLAG_COMPLETED = 1 << 6,
	};

	struct YieldRecord_t
	{
		const CPulseCell_Base *m_pCell = nullptr;
		void *m_pCellState = nullptr;
		PulseCursorCancelPriority_t m_eRequestedCancel = PulseCursorCancelPriority_t::None;
		PulseCursorYieldToken_t m_nToken = -1;
		bool m_bResumePending = false;
		PulseCursorExecResult_t m_ePendingResult = PulseCursorExecResult_t::Succeeded;
	};

	struct ControlStorage_t
	{
		std::vector<PulseCursorTag_t> m_Tags;
		std::vector<PulseCursorHandle> m_Observers;
		std::vector<std::pair<PulseCursorID_t, PulseCursorExecResult_t>> m_ResultSet;
	};

	ControlStorage_t &Control();
	void BuildHostTable();
	void Complete( PulseCursorExecResult_t eResult );
	void LeaveYield();
	void EndRun( const RunStart_t *pStart );
	void Report( bool bError, const char *pFormat, va_list args );

	// Frames.
	void SwitchFrame( PulseFrame_t &frame, int nChunk, int nInstruction );
	static void CopyFrame( PulseFrame_t &target, const PulseFrame_t &source );
	static void DestroyRegisters( PulseFrame_t &frame );
	void JumpOrLeap( int nChunk, int nInstruction, const PulseCallPlan_t *pCall );
	void WriteArgs( const PulseArgPack &args, const PulseRegisterMap_t &map );
	void CopyInheritedTags( CPulseExecCursor *pChild ) const;

	// The interpreter (pulseinterpreter.cpp).
	template <bool bTrace> void Interpret( int *pCount );
	void ExecuteSlow( const PulseOp_t &op, const PulseOpData_t &data );
	void Invoke( const PulseInvokePlan_t &plan );
	void CallAsync( const PulseOpData_t &data );
	void CopyVarToRegister( const PulseOp_t &op, const PulseOpData_t &data, bool bDetach );
	void SetVar( const PulseOp_t &op, const PulseOpData_t &data, bool bObservable );
	void SetVarArrayElement( const PulseOp_t &op, const PulseOpData_t &data );
	void RunBlackboardInstruction( const PulseOp_t &op, const PulseOpData_t &data, bool bWrite );

	CBasePulseGraphInstance *m_pInstance;
	std::unique_ptr<YieldRecord_t> m_pYield;
	std::unique_ptr<ControlStorage_t> m_pControl;
	void *m_HostTable[ PULSE_HOST_INTERFACE_KINDS ] = {}; // filled on the first invoke
	uint32_t m_nHostMask = 0;
	std::vector<std::unique_ptr<PulseFrame_t>> m_Stack;
	PulseFrame_t m_Active;
	State_t m_eState = STATE_IDLE;
	PulseCursorID_t m_nId;
	PulseCursorID_t m_nParentId;
	uint32_t m_nFlags = 0;
	PulseCursorExecResult_t m_eFinalResult = PulseCursorExecResult_t::Succeeded;
};
