// No layer.
