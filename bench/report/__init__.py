"""Tables and plots of what the benchmark measured."""
