#include "tools/toolutils2/widgets/baseeditorwnd/qtprompt.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
struct ButtonMap_t
{
	PromptButton_t m_ePrompt;
	QMessageBox::StandardButton m_eQt;
};

const ButtonMap_t s_ButtonMap[] = {
	{ PROMPT_BUTTON_OK, QMessageBox::Ok },
	{ PROMPT_BUTTON_CANCEL, QMessageBox::Cancel },
	{ PROMPT_BUTTON_YES, QMessageBox::Yes },
	{ PROMPT_BUTTON_NO, QMessageBox::No },
	{ PROMPT_BUTTON_YES_TO_ALL, QMessageBox::YesToAll },
	{ PROMPT_BUTTON_NO_TO_ALL, QMessageBox::NoToAll },
	{ PROMPT_BUTTON_SAVE, QMessageBox::Save },
	{ PROMPT_BUTTON_DISCARD, QMessageBox::Discard },
	{ PROMPT_BUTTON_ABORT, QMessageBox::Abort },
	{ PROMPT_BUTTON_RETRY, QMessageBox::Retry },
	{ PROMPT_BUTTON_IGNORE, QMessageBox::Ignore },
	{ PROMPT_BUTTON_CLOSE, QMessageBox::Close },
};

QMessageBox::Icon ToQtIcon( PromptIcon_t eIcon )
{
	switch ( eIcon )
	{
	case PROMPT_ICON_INFORMATION: return QMessageBox::Information;
	case PROMPT_ICON_WARNING: return QMessageBox::Warning;
	case PROMPT_ICON_CRITICAL: return QMessageBox::Critical;
	case PROMPT_ICON_QUESTION: return QMessageBox::Question;
	default: return QMessageBox::NoIcon;
	}
}

QMessageBox::StandardButton ToQtButton( PromptButton_t eButton )
{
	for ( const ButtonMap_t &entry : s_ButtonMap )
	{
		if ( entry.m_ePrompt == eButton )
			return entry.m_eQt;
	}
	return QMessageBox::NoButton;
}

PromptButton_t FromQtButton( int nQtButton )
{
	for ( const ButtonMap_t &entry : s_ButtonMap )
	{
		if ( entry.m_eQt == nQtButton )
			return entry.m_ePrompt;
	}
	return PROMPT_BUTTON_NONE;
}
} // namespace

QWidget *CQtPrompt::GetParent( void *pParentWindow ) const
{
	if ( pParentWindow )
		return static_cast<QWidget *>( pParentWindow );
	if ( QWidget *pActive = QApplication::activeWindow() )
		return pActive;
	return m_pDefaultParent;
}

void CQtPrompt::ShowMessage( const PromptQuestion_t &message )
{
	QMessageBox box( ToQtIcon( message.m_eIcon ), QString::fromUtf8( message.m_strTitle.Get() ), QString::fromUtf8( message.m_strText.Get() ), QMessageBox::Ok, GetParent( message.m_pParentWindow ) );
	if ( !message.m_strInformativeText.IsEmpty() )
		box.setInformativeText( QString::fromUtf8( message.m_strInformativeText.Get() ) );
	box.exec();
}

PromptButton_t CQtPrompt::Ask( const PromptQuestion_t &question )
{
	QMessageBox box( ToQtIcon( question.m_eIcon ), QString::fromUtf8( question.m_strTitle.Get() ), QString::fromUtf8( question.m_strText.Get() ), QMessageBox::NoButton, GetParent( question.m_pParentWindow ) );
	if ( !question.m_strInformativeText.IsEmpty() )
		box.setInformativeText( QString::fromUtf8( question.m_strInformativeText.Get() ) );
	for ( const ButtonMap_t &entry : s_ButtonMap )
	{
		if ( !question.HasButton( entry.m_ePrompt ) )
			continue;
		QPushButton *pButton = box.addButton( entry.m_eQt );
		if ( const char *pLabel = question.GetButtonLabel( entry.m_ePrompt ) )
			pButton->setText( QString::fromUtf8( pLabel ) );
	}
	if ( question.m_eDefaultButton != PROMPT_BUTTON_NONE )
		box.setDefaultButton( ToQtButton( question.m_eDefaultButton ) );
	int nResult = box.exec();
	return FromQtButton( nResult );
}

bool CQtPrompt::RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen )
{
	pChosen->RemoveAll();
	QWidget *pParent = GetParent( request.m_pParentWindow );
	QString title = QString::fromUtf8( request.m_strTitle.Get() );
	QString start = QString::fromUtf8( request.m_strStartPath.Get() ).replace( '\\', '/' );
	QString filter = QString::fromUtf8( request.m_strFilter.Get() );
	QStringList chosen;
	switch ( request.m_eKind )
	{
	case PROMPT_KIND_OPEN_FILE:
	{
		QString name = QFileDialog::getOpenFileName( pParent, title, start, filter );
		if ( !name.isEmpty() )
			chosen << name;
		break;
	}
	case PROMPT_KIND_OPEN_FILES:
		chosen = QFileDialog::getOpenFileNames( pParent, title, start, filter );
		break;
	case PROMPT_KIND_SAVE_FILE:
	{
		QString name = QFileDialog::getSaveFileName( pParent, title, start, filter );
		if ( !name.isEmpty() )
			chosen << name;
		break;
	}
	case PROMPT_KIND_DIRECTORY:
	{
		QString name = QFileDialog::getExistingDirectory( pParent, title, start );
		if ( !name.isEmpty() )
			chosen << name;
		break;
	}
	default:
		break;
	}
	for ( const QString &name : chosen )
		pChosen->AddToTail( CUtlString( name.toUtf8().constData() ) );
	return !pChosen->IsEmpty();
}

bool CQtPrompt::PickColor( const char *pTitle, const Color &initial, Color *pChosen, void *pParentWindow )
{
	const QColor chosen = QColorDialog::getColor( QColor( initial.r(), initial.g(), initial.b(), initial.a() ), GetParent( pParentWindow ), QString::fromUtf8( pTitle ? pTitle : "" ) );
	if ( !chosen.isValid() )
		return false;
	if ( pChosen )
		pChosen->SetColor( chosen.red(), chosen.green(), chosen.blue(), chosen.alpha() );
	return true;
}

bool CQtPrompt::PickItem( const PromptPickRequest_t &request, int *pChosen )
{
	// One row per item, its name over its description.
	QDialog dialog( GetParent( request.m_pParentWindow ) );
	dialog.setWindowTitle( QString::fromUtf8( request.m_strTitle.Get() ) );
	auto *pLayout = new QVBoxLayout( &dialog );
	auto *pList = new QListWidget( &dialog );
	for ( const PromptPickRequest_t::Item_t &item : request.m_Items )
	{
		QString text = QString::fromUtf8( item.m_strName.Get() );
		if ( !item.m_strDescription.IsEmpty() )
			text += "\n    " + QString::fromUtf8( item.m_strDescription.Get() );
		pList->addItem( text );
	}
	pList->setCurrentRow( 0 );
	pLayout->addWidget( pList );
	auto *pButtons = new QDialogButtonBox( QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog );
	pLayout->addWidget( pButtons );
	QObject::connect( pButtons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept );
	QObject::connect( pButtons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject );
	QObject::connect( pList, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept );
	bool bPicked = dialog.exec() == QDialog::Accepted && pList->currentRow() >= 0;
	if ( pChosen )
		*pChosen = bPicked ? pList->currentRow() : -1;
	return bPicked;
}

void CQtPrompt::Beep() { QApplication::beep(); }
