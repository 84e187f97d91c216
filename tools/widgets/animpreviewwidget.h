#pragma once
// The animation of a preview model: which sequence plays, play and pause, looping, and a
// bar of the frame it stands at. The sequences come from the model; in the "Sequence (or
// Clip)" way of choosing, a clip's path may be typed instead. Setting it from data tells
// nothing.

#include <QWidget>

#include "core/particles/particlemodel.h"

class QComboBox;
class QSlider;
class QToolButton;

class CQAnimPreviewWidget : public QWidget
{
	Q_OBJECT

public:
	// The ways of choosing, in the order of the selection combo.
	enum SelectionMode_t
	{
		SELECT_ANIMATION = 0,
		SELECT_ACTIVITY = 1,
		SELECT_SEQUENCE_OR_CLIP = 2,
		SELECT_SEQUENCE = 3,
	};

	explicit CQAnimPreviewWidget( QWidget *pParent = nullptr );

	void SetAcceptClipPath( bool bAccept );
	void SetSelectionMode( int nMode );
	// The model's sequences fill the list, and the named one is shown (an empty name shows
	// none; a name the model lacks shows as typed text where clip paths are accepted).
	void SetModel( const ParticleModelPtr_t &pModel, const QString &sequenceName );
	QString GetSequenceName() const;
	void SetPlaying( bool bPlaying );
	bool IsPlaying() const;
	void SetLooping( bool bLooping );
	bool IsLooping() const;
	// The frame the model's sequence stands at; -1 for none.
	void SetFrame( int nFrame );

	QComboBox *GetSelectionCombo() const { return m_pSelection; }
	QComboBox *GetSequenceCombo() const { return m_pSequence; }
	QToolButton *GetPlayButton() const { return m_pPlay; }
	QToolButton *GetLoopButton() const { return m_pLoop; }
	QSlider *GetFrameSlider() const { return m_pFrame; }

signals:
	void SelectedAnimationChanged( QString sequenceName );
	void SelectedPreviewAnimationClipChanged( QString clipPath );
	void PlaybackSpeedChanged( float flSpeed );
	void AnimationLoopingChanged( bool bLooping );

private slots:
	void OnSequenceChosen();
	void OnSelectionModeChanged();

private:
	void UpdateFrameRange();

	QComboBox *m_pSelection = nullptr;
	QComboBox *m_pSequence = nullptr;
	QToolButton *m_pPlay = nullptr;
	QToolButton *m_pLoop = nullptr;
	QSlider *m_pFrame = nullptr;
	ParticleModelPtr_t m_pModel;
	bool m_bAcceptClipPath = false;
};
