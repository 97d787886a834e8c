#pragma once
// What stands on the screen while the program starts.

#include <QWidget>

namespace nmr {

class Splash : public QWidget {
public:
    Splash();

protected:
    void paintEvent(QPaintEvent*) override;
};

} // namespace nmr
