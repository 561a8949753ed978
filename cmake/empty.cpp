// Placeholder for an area that has no sources yet.
