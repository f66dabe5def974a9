#pragma once

#include "common/Event.h"

#include <QObject>

namespace qncomm {

/// Shows the system's busy pointer as the application's wait cursor. There is one in an
/// application, however many controls it has; it goes with the application.
class BusyCursor : public QObject {
    Q_OBJECT

  public:
    /// The application's, which is made on the first call; on the thread of the user interface.
    static BusyCursor& OfApplication();
    ~BusyCursor() override;

    /// Shows the ordinary cursor while it exists: for a box that the user has to answer.
    class Pause {
      public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };

  private:
    explicit BusyCursor(QObject* application);
    void Show();

    int mPauses = 0;
    bool mShown = false;
    Subscription mChanges;
};

} // namespace qncomm
