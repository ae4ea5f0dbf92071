"""Drives the workbench as a user does, by real mouse and keyboard input, and waits on its state."""
