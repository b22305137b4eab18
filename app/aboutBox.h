#pragma once

class QWidget;

/// Shows what the program is: its version, and the licences of what is bundled with it. Returns at
/// once. Main thread.
void showAbout(QWidget* window);
