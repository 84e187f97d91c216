#pragma once
// The colour picker: the custom and shared colour grids, a plane and strip of the colour
// model chosen by the H, S, V, R, G and B buttons (the choice stays for the next picker of
// the process), a screen sampler, a number for each channel, alpha when the caller allows
// it, and the previous and new colour side by side. Changed grids are saved when the
// picker closes.
//
// CQColorDialog::PickColor runs it modally and answers the chosen colour; an owner that
// wants to follow the user's tries live connects to CurrentColorChanged and runs exec().

#include <QColor>
#include <QDialog>

#include "tools/widgets/color/fatcolor.h"

class QButtonGroup;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSlider;
class CQColorDialog_ColorGradient;
class CQColorDialog_ColorGrid;
class CQColorSampler;

class CQColorDialog : public QDialog
{
	Q_OBJECT

public:
	static constexpr int CHANNEL_EDIT_WIDTH = 60;
	static constexpr int SAMPLE_WIDTH = 120;
	static constexpr int SAMPLE_HEIGHT = 30;

	// An empty title gives "Color Picker".
	CQColorDialog( const QColor &start, QWidget *pParent, const QString &title, bool bAlpha );
	~CQColorDialog() override;

	// Runs a picker modally: the chosen colour, or the start colour when cancelled.
	static QColor PickColor( const QColor &start, QWidget *pParent, const QString &title, bool bAlpha, bool *pAccepted = nullptr );

	QColor GetColor() const;
	const FatColor_t &GetFatColor() const { return m_Color; }
	const QColor &GetPreviousColor() const { return m_Previous; }
	int GetMode() const { return m_nMode; }
	// The mode the next picker of the process starts in.
	static int GetRememberedMode();

	// The parts, for those who drive the picker.
	CQColorDialog_ColorGrid *GetCustomGrid() const { return m_pCustomGrid; }
	CQColorDialog_ColorGrid *GetSharedGrid() const { return m_pSharedGrid; }
	CQColorDialog_ColorGradient *GetGradient() const { return m_pGradient; }
	CQColorSampler *GetSampler() const { return m_pSampler; }
	// Channel edits and mode buttons in the order H, S, V, R, G, B.
	QLineEdit *GetChannelEdit( int nChannel ) const { return m_pChannelEdits[ nChannel ]; }
	QRadioButton *GetModeButton( int nMode ) const { return m_pModeButtons[ nMode ]; }
	QLineEdit *GetAlphaEdit() const { return m_pAlphaEdit; }
	QSlider *GetAlphaSlider() const { return m_pAlphaSlider; }

public slots:
	void SetColorInternal( FatColor_t color );
	void AcceptColorInternal( FatColor_t color );
	void OnModeChanged( int nMode );
	void OnTextChanged( int nChannel );
	void OnAlphaChanged();
	void SetAlphaEditFromSlider( int nAlpha );
	void OnColorSamplePicked( QColor color );

	void done( int nResult ) override;

signals:
	// Every change of the picked colour while the picker is up.
	void CurrentColorChanged( QColor color );

private:
	void UpdateWidgets();

	FatColor_t m_Color;
	QColor m_Previous;
	bool m_bAlpha;
	int m_nMode = 0;
	// The channel edit being typed into, which an update leaves alone.
	int m_nEditingChannel = -1;

	CQColorDialog_ColorGrid *m_pCustomGrid = nullptr;
	CQColorDialog_ColorGrid *m_pSharedGrid = nullptr;
	CQColorDialog_ColorGradient *m_pGradient = nullptr;
	CQColorSampler *m_pSampler = nullptr;
	QButtonGroup *m_pModeGroup = nullptr;
	QRadioButton *m_pModeButtons[ 6 ] = {};
	QLineEdit *m_pChannelEdits[ 6 ] = {};
	QLineEdit *m_pAlphaEdit = nullptr;
	QSlider *m_pAlphaSlider = nullptr;
	QWidget *m_pPreviousSample = nullptr;
	QWidget *m_pNewSample = nullptr;
};
