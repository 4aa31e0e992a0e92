#pragma once

#include <QWidget>
#include <functional>

#include "CaptureSession.h"
#include "HostActions.h"

class PicturePreview;
class QLabel;
class QPushButton;

/// The program's window: captures, and shows the last picture, what it is and where it went.
class HostWindow : public QWidget {
 public:
    /// The actions outlive the window. `closed` is called instead of closing it.
    HostWindow(HostActions& actions, std::function<void()> closed);

    void showOutcome(const Outcome& outcome);

 protected:
    void closeEvent(QCloseEvent* event) override;

 private:
    void makeOwnActions();
    void makeMenuBar(HostActions& actions);
    QLayout* makeHeader(HostActions& actions);
    QLayout* makeFooter();
    void showPicture(const Outcome& outcome);
    void setMessage(const QString& title, const QString& detail);
    void copyAgain();
    void saveAs();
    void openFolder();

    std::function<void()> closed_;
    QByteArray png_;
    QString savedTo_;
    QAction* copy_;
    QAction* save_;
    QAction* folder_;
    PicturePreview* preview_;
    QLabel* titleLabel_;
    QLabel* detailLabel_;
};
