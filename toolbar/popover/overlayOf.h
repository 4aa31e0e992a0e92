#pragma once

class QWidget;
class VLOverlayPanel;

/// The child panel that a view lies in; null for none.
[[nodiscard]] VLOverlayPanel* overlayOf(QWidget* view);
