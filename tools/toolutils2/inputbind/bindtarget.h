#pragma once
// An object whose commands can be bound to input. A widget registers its targets with
// the input bind manager; bindings reach them while the widget is in the focus chain.

#include <cstdint>

class CBindTargetDescriptorBase;

class IBindTarget
{
public:
	// Tells every live bind engine to drop the target, ending its gestures.
	virtual ~IBindTarget();

	// Each frame, for the targets of a visible widget in the focus chain.
	virtual void OnInputFrame() {}
	virtual void OnCaptureBegin() {}
	virtual void OnCaptureEnd() {}
	// Modifier bits currently held; a command's required modifiers must all be here.
	virtual uint32_t GetActiveModifiers() { return 0; }
	virtual const CBindTargetDescriptorBase *GetBindTargetDescriptor() const = 0;
	// The object the command handlers run on; a proxy answers the target it forwards to.
	virtual IBindTarget *GetBindTargetOwner() { return this; }
	virtual IBindTarget *GetBindTargetIdentity() { return this; }
	// A number drawn once from a process-wide counter at the first call; -1 until then.
	virtual int GetBindInstanceId();

	// The id without drawing one.
	int PeekBindInstanceId() const { return m_nBindInstanceId; }

private:
	int m_nBindInstanceId = -1;
};

// A target that forwards everything to another target, which may change over time (the
// main window forwards its Edit commands to whichever session is shown).
class CBindTargetProxy final : public IBindTarget
{
public:
	void SetTarget( IBindTarget *pTarget ) { m_pTarget = pTarget; }
	IBindTarget *GetTarget() const { return m_pTarget; }

	void OnInputFrame() override;
	void OnCaptureBegin() override;
	void OnCaptureEnd() override;
	uint32_t GetActiveModifiers() override;
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	IBindTarget *GetBindTargetOwner() override;
	IBindTarget *GetBindTargetIdentity() override;
	int GetBindInstanceId() override;

private:
	IBindTarget *m_pTarget = nullptr;
};

// Called by IBindTarget's destructor; the engines register themselves here.
class IBindTargetDestructionListener
{
public:
	virtual void OnBindTargetDestroyed( IBindTarget *pTarget ) = 0;

protected:
	~IBindTargetDestructionListener() = default;
};
void BindTarget_AddDestructionListener( IBindTargetDestructionListener *pListener );
void BindTarget_RemoveDestructionListener( IBindTargetDestructionListener *pListener );
