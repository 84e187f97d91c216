#pragma once
// Picks one asset of a type: a label and a combo of every indexed asset of that type by
// name, "(none)" first. A name may be typed too; one that names no such asset is refused
// with a beep and the shown name comes back. Setting the name from data tells nothing.

#include <QWidget>

class IAsset;
class QComboBox;
class QLabel;

class CQAssetPicker : public QWidget
{
	Q_OBJECT

public:
	// pTypeFilter is the extension of the type ("tmsh").
	CQAssetPicker( const char *pTypeFilter, const char *pLabel, const char *pName, QWidget *pParent = nullptr );

	// Shows the asset of that resource name (empty: none), without telling anyone.
	void SetAssetName( const QString &name );
	QString GetAssetName() const { return m_Shown; }
	// Lists the assets of the type anew.
	void Refill();
	QComboBox *GetCombo() const { return m_pCombo; }

signals:
	// The user chose an asset; null for none.
	void AssetPicked( IAsset *pAsset );

protected:
	void showEvent( QShowEvent *pEvent ) override;

private slots:
	void OnChosen();

private:
	QString m_TypeFilter;
	QLabel *m_pLabel = nullptr;
	QComboBox *m_pCombo = nullptr;
	QString m_Shown;
};
