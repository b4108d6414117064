"""Starts the client against a local service, on a real or a virtual display, and observes it.

script/run and the end-to-end tests are built on it.
"""
