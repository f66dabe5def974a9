#pragma once

#include <QImage>
#include <QPalette>
#include <QString>
#include <QWidget>

namespace qncomm::testing {

/// Keeps the picture for people to look at, as NAME.png in the folder that QN_ARTEFACTS names (by
/// default build/artefacts of the current folder).
void SavePicture(const QImage& picture, const QString& name);
/// What the widget shows, at the screen's pixel ratio.
void SavePicture(QWidget& widget, const QString& name);

/// The colours of a dark desktop.
QPalette DarkPalette();

/// Gives the application the dark colours while it lives.
class DarkDesktop {
  public:
    DarkDesktop();
    ~DarkDesktop();
    DarkDesktop(const DarkDesktop&) = delete;
    DarkDesktop& operator=(const DarkDesktop&) = delete;

  private:
    QPalette mFormer;
};

} // namespace qncomm::testing
