#pragma once
// "Convert Control Point #N to Variable": the face of a conversion plan over the family of
// the shown system. It builds the plan, shows the dry run's report at once and again after
// every change of the name or the type, and applies it once on "Apply". Each message links
// to its node: a click opens the system and selects the function. One per application,
// kept between uses; not modal.

#include <memory>

#include <QDialog>

#include "tools/zol/editor/assetmaintenance/zolsessiondocuments.h"

class CZolSession;
class CZolVariableConversionPlan;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTextBrowser;
class QUrl;

class CQZolVariableConvertDialog : public QDialog
{
	Q_OBJECT

public:
	explicit CQZolVariableConvertDialog( QWidget *pParent = nullptr );
	~CQZolVariableConvertDialog() override;

	// A new plan for the control point over the session's family; the dialog shows.
	void Show( CZolSession *pSession, int nControlPoint );

	const CZolVariableConversionPlan *GetPlan() const { return m_pPlan.get(); }
	QLineEdit *GetNameEdit() const { return m_pNameEdit; }
	QComboBox *GetTypeBox() const { return m_pTypeBox; }
	QLabel *GetStatusLabel() const { return m_pStatus; }
	QTextBrowser *GetReport() const { return m_pReport; }
	QPushButton *GetApplyButton() const { return m_pApplyButton; }

public slots:
	void OnNameChanged();
	void OnTypeChanged();
	void OnLinkClicked( const QUrl &link );
	void OnApply();

private:
	void ShowReport();

	QLineEdit *m_pNameEdit = nullptr;
	QComboBox *m_pTypeBox = nullptr;
	QLabel *m_pStatus = nullptr;
	QTextBrowser *m_pReport = nullptr;
	QDialogButtonBox *m_pButtons = nullptr;
	QPushButton *m_pApplyButton = nullptr;
	CZolSessionDocuments m_Documents;
	std::unique_ptr<CZolVariableConversionPlan> m_pPlan;
};
