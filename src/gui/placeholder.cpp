namespace ct { int GuiPlaceholder() { return 0; } }
