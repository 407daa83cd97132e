"""A private virtual desktop, the applications that people write in, and Tavelle on it as a person starts it."""
