#pragma once

class QWidget;

/// Opens the box that says what the program is, and what leaves the machine.
void openAboutBox(QWidget* parent);
