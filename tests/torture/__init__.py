"""The sections of script/torture, one module each, and what they share."""
