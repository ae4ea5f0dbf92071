"""Drives the workbench as a user does, by real mouse and keyboard input on a display of its own, and waits on its state."""
