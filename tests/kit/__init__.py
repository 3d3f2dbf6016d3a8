"""What test and measuring scripts of several folders share. A script outside
tests/ or in one of its folders puts tests/ on its path and imports from here:

    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    from kit.engine_process import EngineProcess
"""
