#pragma once

#include <QDialog>
#include <QList>

class QLabel;
class QLineEdit;
class QPushButton;
struct AppContext;

// The layer (category) name editor: one box per layer index 0..20. Names are
// shown trimmed and stored exactly as typed; Accept writes all 21 entries and
// saves the table into the settings store, Cancel stores nothing. The caller
// refreshes its category lists afterwards (Accepted() tells whether anything
// was stored); the settings file is saved by Accept.
class frmEditLayers : public QDialog {
    Q_OBJECT
public:
    explicit frmEditLayers(AppContext& context, QWidget* parent = nullptr);
    ~frmEditLayers() override;

    bool Accepted() const { return m_accepted; }

    void cmdAccept_Click();
    void cmdAbort_Click();

    // The box for a layer index (txtDesc(i)).
    QLineEdit* box(int index) const { return txtDesc.value(index); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();

    AppContext& m_context;
    bool m_accepted = false;
    QList<QLineEdit*> txtDesc;
    QList<QLabel*> Label1;
    QPushButton* cmdAccept = nullptr;
    QPushButton* cmdAbort = nullptr;
};
