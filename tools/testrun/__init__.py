"""What tools/run_tests.py is made of."""
