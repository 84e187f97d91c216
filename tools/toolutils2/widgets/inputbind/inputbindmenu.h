#pragma once
// The application's help menu: "Visit Developer Help URL" (the help file of the focused
// part of the tool), "Show Key Bindings", "About...", and "Command Filter", a list of
// every command the focus chain reaches that runs the one chosen.

#include <QMenu>
#include <functional>

class CQInputBindCommandList;
class CQInputBindEditor;
class QUrl;

class CQInputBindMenu final : public QMenu
{
	Q_OBJECT

public:
	// Opens a URL outside the tool; the default hands it to the desktop. Tests install
	// their own, so no browser ever starts.
	using UrlOpener_t = std::function<bool( const QUrl & )>;

	CQInputBindMenu( const QString &strTitle, QWidget *pParent );

	// Installs an opener (empty restores the desktop's); answers the previous one.
	static UrlOpener_t SetUrlOpener( UrlOpener_t opener );
	// The text of "About..."; the application's name and version when not set.
	void SetAboutText( const QString &strText ) { m_strAboutText = strText; }

	// The help contexts of the focus chain, nearest the focus first: the widgets' help
	// contexts, then the context names of their targets.
	static QStringList CurrentHelpContexts();
	// The GAME-relative help file of a context ("tools/help/particles_help.txt").
	static QString HelpFileOfContext( const QString &strContext );

	QAction *GetHelpUrlAction() const { return m_pHelpUrlAction; }
	QAction *GetKeyBindingsAction() const { return m_pKeyBindingsAction; }
	QAction *GetAboutAction() const { return m_pAboutAction; }
	QMenu *GetCommandFilterMenu() const { return m_pCommandMenu; }
	CQInputBindCommandList *GetCommandList() const { return m_pCommandList; }
	// The key bindings window once "Show Key Bindings" made it.
	CQInputBindEditor *GetInputBindEditor() const { return m_pInputBindEditor; }

public slots:
	void VisitDeveloperHelp();
	void ShowKeyBindings();
	void ShowAbout();

private slots:
	void OnCommandMenuAboutToShow();
	void OnCommandChosen();

private:
	QAction *m_pHelpUrlAction = nullptr;
	QAction *m_pKeyBindingsAction = nullptr;
	QAction *m_pAboutAction = nullptr;
	QMenu *m_pCommandMenu = nullptr;
	CQInputBindCommandList *m_pCommandList = nullptr;
	CQInputBindEditor *m_pInputBindEditor = nullptr;
	QString m_strAboutText;
};
