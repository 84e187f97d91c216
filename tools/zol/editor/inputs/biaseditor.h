#pragma once
// The bias row of biased randoms and biased remaps: the kind of curve (bias, gain or
// exponent), its parameter as a number, and a small picture of the curve that changes the
// parameter when dragged diagonally.

#include <QPoint>
#include <QWidget>

class QComboBox;
class CQSmartLineEdit;

class CQBiasCurveView : public QWidget
{
	Q_OBJECT

public:
	static constexpr int WIDTH = 80;
	static constexpr int HEIGHT = 38;
	// A drag starts past this Manhattan distance; each pixel moves the parameter this much.
	static constexpr int DRAG_THRESHOLD = 4;
	static constexpr float DRAG_STEP = 0.005f;
	static constexpr float DRAG_LIMIT = 0.999f;

	explicit CQBiasCurveView( QWidget *pParent = nullptr );

	void SetBias( int nBiasType, float flParameter );
	int GetBiasType() const { return m_nBiasType; }
	float GetParameter() const { return m_flParameter; }
	bool IsDragging() const { return m_bDragging; }

signals:
	void BiasParameterChanging();
	void BiasParameterEdited();

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;

private:
	int m_nBiasType = 0;
	float m_flParameter = 0.0f;
	bool m_bPressed = false;
	bool m_bDragging = false;
	QPoint m_PressPos;
	float m_flDragStartParameter = 0.0f;
};

class CQBiasEditor : public QWidget
{
	Q_OBJECT

public:
	static constexpr int HEIGHT = 40;
	static constexpr int EDIT_WIDTH = 75;

	explicit CQBiasEditor( QWidget *pParent = nullptr );
	~CQBiasEditor() override;

	// Shows a bias; tells nothing.
	void SetBias( int nBiasType, float flParameter );
	int GetBiasType() const { return m_nBiasType; }
	float GetParameter() const { return m_flParameter; }

	QComboBox *GetTypeCombo() const { return m_pTypeCombo; }
	CQSmartLineEdit *GetParameterEdit() const { return m_pEdit; }
	CQBiasCurveView *GetCurveView() const { return m_pView; }

signals:
	void BiasTypeChanged();
	void BiasParameterChanged();

public slots:
	void OnBiasTypeComboChanged();
	void OnTextEdited();
	void OnCurveChanging();
	void OnCurveEdited();

private:
	// Clamps to -1..1, shows it, and tells the change.
	void SetParameter( float flParameter );
	void ShowParameter();

	int m_nBiasType = 0;
	float m_flParameter = 0.0f;
	QComboBox *m_pTypeCombo = nullptr;
	CQSmartLineEdit *m_pEdit = nullptr;
	CQBiasCurveView *m_pView = nullptr;
};
