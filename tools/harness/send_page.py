"""The web application's page for sending, as a person uses it: its buttons, fields and texts."""

import json
