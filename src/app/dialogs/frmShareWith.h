#pragma once

#include "model/clsEvent.h"

#include <QDialog>

class QCheckBox;
class QListWidget;
class QRadioButton;

// "Share with ...": edits how one of the user's own events is shared in
// networked mode — not at all, with every user of the shared folder, or only
// with the users ticked in the list (the names of "TVOShared.ini").
class frmShareWith : public QDialog {
    Q_OBJECT
public:
    frmShareWith(const clsEvent& event, const QStringList& users, QWidget* parent = nullptr);

    // Writes the choices into event: SharedEvent, ShareWithSpecific and
    // ShareNames (each ticked name followed by CR LF).
    void ApplyTo(clsEvent& event) const;

private:
    void updateEnabled();

    QCheckBox* m_shared;
    QRadioButton* m_everyone;
    QRadioButton* m_specific;
    QListWidget* m_users;
};
